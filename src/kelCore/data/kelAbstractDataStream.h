#ifndef KELCORE_KELABSTRACTDATASTREAM_H
#define KELCORE_KELABSTRACTDATASTREAM_H

/// \file
/// Description of one video source.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractData.h>

#include <QUrl>

class kelAbstractDataStreamPrivate;

/// Where a video comes from (an address or a device), what it is called, and the calibration of its camera.
/// Frame rate and resolution are left to concrete streams; the bodies here only report that they are
/// defaults.
///
/// It derives from the framework's data class directly and so has neither specific properties nor a recorded
/// map.
///
/// Wrong or repeated settings are logged and ignored: an empty device or an invalid address at level 256, a
/// value that is set already at level 17.
class KELCORE_EXPORT kelAbstractDataStream : public nubAbstractData
{
    Q_OBJECT

public:
    /// No address, device and name "Default", a default calibration.
    kelAbstractDataStream();
    kelAbstractDataStream(const kelAbstractDataStream &other);
    ~kelAbstractDataStream() override;
    /// Traces itself at level 0, then calls the virtual `copy`.
    kelAbstractDataStream &operator=(const kelAbstractDataStream &other);

    /// Traces itself at level 0; the caller owns the result.
    kelAbstractDataStream *clone() override;
    /// Forwards data to the overload below. From what is no data, the same with what they share.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// Copies all fields of another stream, by its getters. From data of another kind only the framework's
    /// part is copied, and a warning is logged at level 17.
    virtual void copy(const nubAbstractData &other);
    virtual const QUrl &url() const;
    virtual void url(const QUrl &address);
    virtual QString device() const;
    virtual void device(QString name);
    virtual QString streamName() const;
    virtual void streamName(QString name);
    virtual kelAbstractDataCalibration getCameraCalibration() const;
    /// Assigns: a calibration of another kind, such as one with depth, is refused with the slicing warning.
    virtual void setCameraCalibration(kelAbstractDataCalibration &calibration);
    /// Frames per second. Default: notice at level 1, -1.
    virtual int fps() const;
    /// Default: notice at level 1; nothing is stored.
    virtual void fps(int framesPerSecond);
    /// Default: notice at level 1, a null string.
    virtual QString resolution() const;
    /// Default: notice at level 1; nothing is stored.
    virtual void resolution(QString text);

protected:
    explicit kelAbstractDataStream(kelAbstractDataStreamPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractDataStream)
};

#endif
