#ifndef KELCORE_KELABSTRACTPROCESSCLASSIFIER_H
#define KELCORE_KELABSTRACTPROCESSCLASSIFIER_H

/// \file
/// Stage interface: telling what the blobs of a frame are.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

class kelAbstractProcessClassifierPrivate;

/// Turns blobs into physical objects.
///
/// Call `setCalibration` once; then, per frame, `setBlobs` and `classify`. After it `getPhysicalObjects`
/// holds one object for each blob that was recognised, with its box in the image and its type, and with what
/// the calibration tells of its place and size in the scene, in the units of the calibration.
class KELCORE_EXPORT kelAbstractProcessClassifier : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessClassifier();
    /// Shares the calibration and the blobs; the copy has no physical objects.
    kelAbstractProcessClassifier(const kelAbstractProcessClassifier &other);
    ~kelAbstractProcessClassifier() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessClassifier &operator=(const kelAbstractProcessClassifier &other) = default;

    /// Replaces the physical objects by those found among the blobs, as new objects; no blobs give no
    /// objects. False when the stage cannot work, without a calibration for instance.
    virtual bool classify() = 0;

    void setCalibration(QSharedPointer<kelAbstractDataCalibration> &calibration);
    void setBlobs(QList<QSharedPointer<kelDataBlob>> &blobs);
    /// The stage's own list, where `classify` puts the objects; empty until then.
    QList<QSharedPointer<kelDataPhysicalObject>> &getPhysicalObjects();

protected:
    /// Null until set.
    const QSharedPointer<kelAbstractDataCalibration> &getCalibration() const;
    /// The blobs to tell apart; empty until set.
    const QList<QSharedPointer<kelDataBlob>> &getBlobs() const;

    explicit kelAbstractProcessClassifier(kelAbstractProcessClassifierPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessClassifier)
};

#endif
