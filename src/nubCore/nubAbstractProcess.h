#ifndef NUBCORE_NUBABSTRACTPROCESS_H
#define NUBCORE_NUBABSTRACTPROCESS_H

/// \file
/// Framework base of every processing stage.

#include <nubCore/nubAbstractObject.h>

class nubAbstractData;
class nubAbstractProcessPrivate;

/// A process: something that takes data and gives data.
///
/// Every operation has a quiet default: reading and writing fail, setters do nothing, getters give null or 0.
/// Classes override what they mean to offer.
class NUBCORE_EXPORT nubAbstractProcess : public nubAbstractObject
{
    Q_OBJECT

public:
    explicit nubAbstractProcess(nubAbstractProcess *parent = nullptr);
    nubAbstractProcess(const nubAbstractProcess &other);
    ~nubAbstractProcess() override;
    nubAbstractProcess &operator=(const nubAbstractProcess &other);

    virtual int update();
    virtual void onCanceled();
    virtual bool read(const QString &file);
    virtual bool read(const QStringList &files);
    virtual bool write(const QString &file);
    virtual bool write(const QStringList &files);
    virtual void setParameter(int value);
    virtual void setParameter(int value, int channel);
    virtual void setParameter(int value, int channel, int frame);
    virtual void setParameter(int *values);
    virtual void setParameter(int *values, int channel);
    virtual void setParameter(int *values, int channel, int frame);
    virtual void setParameter(long long value);
    virtual void setParameter(long long value, int channel);
    virtual void setParameter(long long value, int channel, int frame);
    virtual void setParameter(long long *values);
    virtual void setParameter(long long *values, int channel);
    virtual void setParameter(long long *values, int channel, int frame);
    virtual void setParameter(double value);
    virtual void setParameter(double value, int channel);
    virtual void setParameter(double value, int channel, int frame);
    virtual void setParameter(double *values, int count);
    virtual void setParameter(double *values, int count, int channel);
    virtual void setParameter(double *values, int count, int channel, int frame);
    virtual void setParameter(nubAbstractObject *value);
    virtual void setParameter(nubAbstractObject *value, int channel);
    virtual void setParameter(nubAbstractObject *value, int channel, int frame);
    virtual void setInput(nubAbstractData *data);
    virtual void setInput(nubAbstractData *data, int channel);
    virtual void setInput(nubAbstractData *data, int channel, int frame);
    virtual void setData(void *data);
    virtual void setData(void *data, int channel);
    virtual void setData(void *data, int channel, int frame);
    virtual nubAbstractData *output();
    virtual nubAbstractData *output(int channel);
    virtual nubAbstractData *output(int channel, int frame);
    virtual void *data();
    virtual void *data(int channel);
    virtual void *data(int channel, int frame);
    virtual int channelCount();

protected:
    explicit nubAbstractProcess(nubAbstractProcessPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, nubAbstractProcess)
};

#endif
