#ifndef KELCORE_KELABSTRACTPROCESSCLASSIFIER_H
#define KELCORE_KELABSTRACTPROCESSCLASSIFIER_H

/// \file
/// Stage interface: telling what the blobs of a frame are.

#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

class kelAbstractDataCalibration;
class kelAbstractProcessClassifierPrivate;
class kelDataBlob;
class kelDataPhysicalObject;

/// Turns blobs into physical objects.
///
/// Call `setCalibration` once; then, per frame, `setBlobs` and `classify`. After it `getPhysicalObjects`
/// holds one object for each blob that was recognised, with its box and type and what the calibration tells
/// of its place and size in the scene.
class KELCORE_EXPORT kelAbstractProcessClassifier : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessClassifier();
    /// Shares the calibration and the blobs; the copy has no physical objects.
    kelAbstractProcessClassifier(const kelAbstractProcessClassifier &other);
    ~kelAbstractProcessClassifier() override;

    /// Replaces the physical objects by those found among the blobs; no blobs give no objects. False when the
    /// stage cannot work, without a calibration for instance.
    virtual bool classify() = 0;

    void setCalibration(QSharedPointer<kelAbstractDataCalibration> &calibration);
    void setBlobs(QList<QSharedPointer<kelDataBlob>> &blobs);
    /// The stage's own list, where `classify` puts the objects; empty until then.
    QList<QSharedPointer<kelDataPhysicalObject>> &getPhysicalObjects();

protected:
    explicit kelAbstractProcessClassifier(kelAbstractProcessClassifierPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessClassifier)
};

#endif
