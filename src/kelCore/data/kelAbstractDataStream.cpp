#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelAbstractDataStream_p.h>

#include <nubCore/nubNotice.h>
#include <nubLog/nubLog.h>

namespace {
const char copyTrace[] = "virtual void kelAbstractDataStream::copy(const nubAbstractData&)";
const char unlikeWarning[] = "Copy can't be done at the kelAbstractDataStream level.";
} // namespace

kelAbstractDataStream::kelAbstractDataStream() : kelAbstractDataStream(*new kelAbstractDataStreamPrivate) { }

kelAbstractDataStream::kelAbstractDataStream(const kelAbstractDataStream &other)
    : kelAbstractDataStream(*new kelAbstractDataStreamPrivate(*other.d_func()), other.parent())
{ }

kelAbstractDataStream::kelAbstractDataStream(kelAbstractDataStreamPrivate &dd, QObject *parent)
    : nubAbstractData(dd, parent)
{ }

kelAbstractDataStream::~kelAbstractDataStream() = default;

kelAbstractDataStream &kelAbstractDataStream::operator=(const kelAbstractDataStream &other)
{
    nub::log(nub::Trace,
             "kelAbstractDataStream& kelAbstractDataStream::operator=(const kelAbstractDataStream&)");
    copy(other);
    return *this;
}

kelAbstractDataStream *kelAbstractDataStream::clone()
{
    nub::log(nub::Trace, "virtual kelAbstractDataStream* kelAbstractDataStream::clone()");
    return new kelAbstractDataStream(*this);
}

void kelAbstractDataStream::copy(const nubAbstractObject &other)
{
    if (const auto *data = dynamic_cast<const nubAbstractData *>(&other)) {
        copy(*data);
        return;
    }
    nub::log(nub::Trace, copyTrace);
    nubAbstractData::copy(other);
    nub::log(nub::Warning, unlikeWarning);
}

QString kelAbstractDataStream::identifier() const { return QStringLiteral("kelAbstractDataStream"); }

void kelAbstractDataStream::copy(const nubAbstractData &other)
{
    nub::log(nub::Trace, copyTrace);
    if (&other == this)
        return;
    nubAbstractData::copy(other);

    const auto *stream = nub::sameKind<kelAbstractDataStream>(*this, other);
    if (!stream) {
        nub::log(nub::Warning, unlikeWarning);
        return;
    }
    Q_D(kelAbstractDataStream);
    d->url = stream->url();
    d->device = stream->device();
    d->streamName = stream->streamName();
    d->cameraCalibration = stream->getCameraCalibration();
}

const QUrl &kelAbstractDataStream::url() const { return d_func()->url; }

void kelAbstractDataStream::url(const QUrl &address)
{
    Q_D(kelAbstractDataStream);
    if (!address.isValid())
        nub::log(nub::Rejected, "You have provided a wrong url.");
    else if (address != d->url)
        d->url = address;
    else
        nub::log(nub::Warning, "You have already provided this url.");
}

QString kelAbstractDataStream::device() const { return d_func()->device; }

void kelAbstractDataStream::device(QString name)
{
    Q_D(kelAbstractDataStream);
    if (name.isEmpty())
        nub::log(nub::Rejected, "You have provided a wrong device string.");
    else if (name != d->device)
        d->device = name;
    else
        nub::log(nub::Warning, "You have already provided this device string.");
}

QString kelAbstractDataStream::streamName() const { return d_func()->streamName; }

void kelAbstractDataStream::streamName(QString name) { d_func()->streamName = name; }

kelAbstractDataCalibration kelAbstractDataStream::getCameraCalibration() const
{
    return d_func()->cameraCalibration;
}

void kelAbstractDataStream::setCameraCalibration(kelAbstractDataCalibration &calibration)
{
    d_func()->cameraCalibration = calibration;
}

int kelAbstractDataStream::fps() const
{
    nub::defaultNotice(this, "virtual int kelAbstractDataStream::fps() const");
    return -1;
}

void kelAbstractDataStream::fps(int)
{
    nub::defaultBody(this, "virtual void kelAbstractDataStream::fps(int)");
}

QString kelAbstractDataStream::resolution() const
{
    return nub::defaultBody<QString>(this, "virtual QString kelAbstractDataStream::resolution() const");
}

void kelAbstractDataStream::resolution(QString)
{
    nub::defaultBody(this, "virtual void kelAbstractDataStream::resolution(QString)");
}
