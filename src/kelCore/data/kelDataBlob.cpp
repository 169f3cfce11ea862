#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataBlob_p.h>

#include <nubCore/nubNotice.h>

namespace {
const QString &recordedBoxKey()
{
    static const QString key = QStringLiteral("BoundingBox2D");
    return key;
}
} // namespace

kelDataBlob::kelDataBlob() : kelDataBlob(*new kelDataBlobPrivate) { }

kelDataBlob::kelDataBlob(const kelDataBlob &other)
    : kelDataBlob(*new kelDataBlobPrivate(*other.d_func()), other.parent())
{ }

kelDataBlob::kelDataBlob(kelDataBlobPrivate &dd, QObject *parent) : kelAbstractData(dd, parent) { }

kelDataBlob::~kelDataBlob() = default;

kelDataBlob &kelDataBlob::operator=(const kelDataBlob &other)
{
    copy(other);
    return *this;
}

kelDataBlob *kelDataBlob::clone() { return new kelDataBlob(*this); }

void kelDataBlob::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    if (const auto *blob = nub::sameKindOrWarnOfForeign<kelDataBlob>(*this, other))
        setBoundingBox2D(blob->getBoundingBox2D());
}

QString kelDataBlob::identifier() const { return QStringLiteral("kelDataBlob"); }

void kelDataBlob::setBoundingBox2D(const cv::Rect &box) { d_func()->boundingBox2D = box; }

const cv::Rect &kelDataBlob::getBoundingBox2D() const { return d_func()->boundingBox2D; }

void kelDataBlob::setBoundingBox2D_qt(const QRect &box) { d_func()->map.insert(recordedBoxKey(), box); }

QRect kelDataBlob::getBoundingBox2D_qt() const { return d_func()->map.value(recordedBoxKey()).toRect(); }
