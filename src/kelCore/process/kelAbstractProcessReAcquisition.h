#ifndef KELCORE_KELABSTRACTPROCESSREACQUISITION_H
#define KELCORE_KELABSTRACTPROCESSREACQUISITION_H

/// \file
/// Stage interface: knowing people again.

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

#include <string>

class kelAbstractProcessReAcquisitionPrivate;

/// Finds out which actors have been seen before, and gives them back their identity.
///
/// Call `setMTSPath` once; then, per frame, `setImage`, `setActors` and `reAcquire`. After it `getActors`
/// gives the actors with the identities they are known by.
class KELCORE_EXPORT kelAbstractProcessReAcquisition : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessReAcquisition();
    /// Shares the image and the actors set; the copy has no path and no actors to give.
    kelAbstractProcessReAcquisition(const kelAbstractProcessReAcquisition &other);
    ~kelAbstractProcessReAcquisition() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessReAcquisition &operator=(const kelAbstractProcessReAcquisition &other) = default;

    /// Replaces the actors that `getActors` gives; no actors set give none. False when the stage cannot work,
    /// without an image for instance.
    virtual bool reAcquire() = 0;

    /// The frame that the actors stand in.
    void setImage(QSharedPointer<kelDataImage> image);
    /// Path of the file or folder that holds what the stage knows people by; what is there is the stage's to
    /// say.
    void setMTSPath(std::string path);
    /// Replaces the actors that go in.
    void setActors(QList<QSharedPointer<kelDataActor>> actors);
    /// A copy of the list of actors that came out, sharing the actors. It is a list of its own, deliberately:
    /// what `setActors` is given never shows here unless `reAcquire` puts it there.
    QList<QSharedPointer<kelDataActor>> getActors();

protected:
    /// Null until set.
    const QSharedPointer<kelDataImage> &getImage() const;
    /// Empty until set.
    const std::string &getMTSPath() const;
    /// The actors that `setActors` was given.
    const QList<QSharedPointer<kelDataActor>> &getInputActors() const;
    /// Replaces the actors that `getActors` gives.
    void setOutputActors(QList<QSharedPointer<kelDataActor>> actors);

    explicit kelAbstractProcessReAcquisition(kelAbstractProcessReAcquisitionPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessReAcquisition)
};

#endif
