#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>

kelAbstractProcessSegmentation::kelAbstractProcessSegmentation()
    : kelAbstractProcess(*new kelAbstractProcessSegmentationPrivate)
{ }

kelAbstractProcessSegmentation::kelAbstractProcessSegmentation(const kelAbstractProcessSegmentation &other)
    : kelAbstractProcess(*new kelAbstractProcessSegmentationPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessSegmentation::kelAbstractProcessSegmentation(kelAbstractProcessSegmentationPrivate &dd,
                                                               QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessSegmentation::~kelAbstractProcessSegmentation() = default;

void kelAbstractProcessSegmentation::setAcquisitionImage(QSharedPointer<kelDataImage> &image)
{
    d_func()->acquisitionImage = image;
}

const QSharedPointer<kelDataImage> &kelAbstractProcessSegmentation::getAcquisitionImage() const
{
    return d_func()->acquisitionImage;
}

QSharedPointer<kelDataImage> &kelAbstractProcessSegmentation::getSegmentationImage()
{
    return d_func()->segmentationImage;
}
