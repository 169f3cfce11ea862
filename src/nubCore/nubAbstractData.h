#ifndef NUBCORE_NUBABSTRACTDATA_H
#define NUBCORE_NUBABSTRACTDATA_H

/// \file
/// Framework base of every data object.

#include <nubCore/nubAbstractObject.h>
#include <nubCore/nubVector.h>

#include <QImage>
#include <QList>
#include <QVariant>

class nubAbstractDataPrivate;

/// A data object: something that processes exchange.
///
/// Every operation has a quiet default: reading, writing and conversion fail, setters do nothing, getters
/// give null, 0 or an empty value. Classes override what they mean to offer.
class NUBCORE_EXPORT nubAbstractData : public nubAbstractObject
{
    Q_OBJECT

public:
    explicit nubAbstractData(nubAbstractData *parent = nullptr);
    nubAbstractData(const nubAbstractData &other);
    ~nubAbstractData() override;
    nubAbstractData &operator=(const nubAbstractData &other);

    nubAbstractData *clone() override = 0;
    /// Copies the framework's part of the object and, from other data, of the data.
    void copy(const nubAbstractObject &other) override;

    virtual void draw();
    virtual bool read(const QString &file);
    virtual bool read(const QStringList &files);
    virtual bool write(const QString &file);
    virtual bool write(const QStringList &files);
    virtual nubAbstractData *convert(const QString &toType);
    virtual QByteArray serialize();
    virtual bool deserialize(const QByteArray &bytes);
    virtual nubAbstractData *output();
    virtual nubAbstractData *output(int channel);
    virtual void *data();
    virtual void *data(int channel);
    virtual void *parameter(int channel);
    virtual int numberOfChannels();
    virtual void setParameter(int value);
    virtual void setParameter(int value, int channel);
    virtual void setParameter(long long value);
    virtual void setParameter(long long value, int channel);
    virtual void setParameter(float value);
    virtual void setParameter(float value, int channel);
    virtual void setParameter(double value);
    virtual void setParameter(double value, int channel);
    virtual void setParameter(const QString &value);
    virtual void setParameter(const QString &value, int channel);
    virtual void setParameter(nubAbstractData *value);
    virtual void setParameter(nubAbstractData *value, int channel);
    virtual void setParameter(const nubVector<double> &value);
    virtual void setParameter(const nubVector<double> &value, int channel);
    virtual void setData(void *data);
    virtual void setData(void *data, int channel);
    virtual void setNumberOfChannels(int channels);
    virtual void update();
    virtual QImage thumbnail();
    virtual QList<QImage> thumbnails();
    virtual QVariant toVariant(nubAbstractData *data);
    virtual nubAbstractData *fromVariant(const QVariant &variant);

protected:
    explicit nubAbstractData(nubAbstractDataPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, nubAbstractData)
};

#endif
