#ifndef KELCORE_KELABSTRACTPROCESS_H
#define KELCORE_KELABSTRACTPROCESS_H

/// \file
/// Common base of the processing stages.

#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractProcess.h>

#include <QVariantMap>

class CSynchronizer;
class kelAbstractProcessPrivate;

/// A processing stage: it carries the time stamp of the frame in work and a free-form map of parameters.
///
/// Whoever drives the pipeline sets the time stamp before a stage runs on a frame. A stage is used from one
/// thread at a time.
///
/// The copy constructor carries time stamp and parameters; `copy` and assignment carry the framework's part
/// alone.
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
    const CSynchronizer &getSynchronizer() const;

    const QVariantMap &getSpecificParameters() const;
    /// Replaces the parameters. Default: notice at level 1, then keeps them and returns true; a stage that
    /// overrides it decides for itself.
    virtual bool setSpecificParameters(const QVariantMap &parameters);

protected:
    explicit kelAbstractProcess(kelAbstractProcessPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcess)
};

#endif
