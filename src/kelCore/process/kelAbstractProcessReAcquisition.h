#ifndef KELCORE_KELABSTRACTPROCESSREACQUISITION_H
#define KELCORE_KELABSTRACTPROCESSREACQUISITION_H

/// \file
/// Stage interface: knowing people again.

#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

#include <string>

class kelAbstractProcessReAcquisitionPrivate;
class kelDataActor;
class kelDataImage;

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

    /// Replaces the actors that `getActors` gives; no actors set give none. False when the stage cannot work,
    /// without an image for instance.
    virtual bool reAcquire() = 0;

    void setImage(QSharedPointer<kelDataImage> image);
    /// Path of what the stage knows people by.
    void setMTSPath(std::string path);
    /// Replaces the actors that go in.
    void setActors(QList<QSharedPointer<kelDataActor>> actors);
    /// A copy of the list of actors that came out, sharing the actors. It is a list of its own, deliberately:
    /// what `setActors` is given never shows here unless `reAcquire` puts it there.
    QList<QSharedPointer<kelDataActor>> getActors();

protected:
    explicit kelAbstractProcessReAcquisition(kelAbstractProcessReAcquisitionPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessReAcquisition)
};

#endif
