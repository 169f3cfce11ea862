#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataImage_p.h>

#include <nubCore/nubNotice.h>

kelDataImage::kelDataImage() : kelDataImage(*new kelDataImagePrivate) { }

kelDataImage::kelDataImage(const kelDataImage &other)
    : kelDataImage(*new kelDataImagePrivate(*other.d_func()), other.parent())
{ }

kelDataImage::kelDataImage(kelDataImagePrivate &dd, QObject *parent) : kelAbstractData(dd, parent) { }

kelDataImage::~kelDataImage() = default;

kelDataImage &kelDataImage::operator=(const kelDataImage &other)
{
    copy(other);
    return *this;
}

kelDataImage *kelDataImage::clone() { return new kelDataImage(*this); }

void kelDataImage::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    if (const auto *image = nub::sameKindOrWarn<kelDataImage>(*this, other))
        setImage(image->getImage());
}

QString kelDataImage::identifier() const { return QStringLiteral("kelDataImage"); }

void kelDataImage::setImage(const cv::Mat &image) { d_func()->image = image; }

const cv::Mat &kelDataImage::getImage() const { return d_func()->image; }

bool kelDataImage::read(const QString &) { return true; }

bool kelDataImage::write(const QString &) { return true; }
