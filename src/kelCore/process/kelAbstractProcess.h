#ifndef KELCORE_KELABSTRACTPROCESS_H
#define KELCORE_KELABSTRACTPROCESS_H

/// \file
/// Common base of the processing stages.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractProcess.h>

#include <QVariantMap>

class kelAbstractProcessPrivate;

/// A processing stage: it carries the time stamp of the frame in work and a free-form map of parameters.
///
/// What follows holds for every stage interface; each adds what it takes, computes and gives.
///
/// **Calls.** Nothing runs by itself: the program that drives the pipeline makes the settings once, then, per
/// frame, sets the time stamp, hands over the inputs, calls the operation that computes, and takes the
/// results. A stage is used from one thread at a time.
///
/// **Ownership.** What goes in or out through a shared pointer, or a list of them, is shared between caller
/// and stage, pixels included. A setter keeps what it is given, null or empty as well, until the next one; it
/// checks nothing. A raw pointer stays the caller's. Stages and data objects that are held by value or by a
/// shared pointer must have no `QObject` parent.
///
/// **Failure.** A computing operation that gives a bool gives false when it cannot work, for want of an input
/// for instance; what its getters give then says nothing about the frame. Stages throw nothing of their own;
/// exceptions of OpenCV pass through.
///
/// **Deriving.** The header of an interface is all that a stage needs. Inputs without a public getter are read
/// through protected const getters; protected operations named `keep` store, silently, what an overridden
/// setter was given. A stage holds state of its own in data members. An interface's private class, in the
/// header that ends in `_p.h`, is for stages that others shall derive from in turn.
///
/// **Copying.** The copy constructor carries time stamp, parameters and what the interface names; `copy` and
/// assignment carry the framework's part alone. `clone` gives null where no class overrides it, and slices
/// where the stage leaves an interface's own `clone` as it is: those that clone say so in their headers.
class KELCORE_EXPORT kelAbstractProcess : public nubAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcess();
    kelAbstractProcess(const kelAbstractProcess &other);
    ~kelAbstractProcess() override;
    /// Calls the virtual `copy`.
    kelAbstractProcess &operator=(const kelAbstractProcess &other);

    void setSynchronizer(const CSynchronizer &synchronizer);
    /// The time stamp of the frame in work; null until set.
    const CSynchronizer &getSynchronizer() const;

    const QVariantMap &getSpecificParameters() const;
    /// Replaces the parameters, whole. Default: notice at level 1 that nobody looks at them, then keeps them
    /// and returns true; a stage that overrides it decides for itself what it takes and what it keeps.
    virtual bool setSpecificParameters(const QVariantMap &parameters);

protected:
    /// Replaces what `getSpecificParameters` gives, silently.
    void keepSpecificParameters(const QVariantMap &parameters);

    explicit kelAbstractProcess(kelAbstractProcessPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcess)
};

#endif
