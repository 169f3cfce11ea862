#include <kelCore/process/kelAbstractProcessAcquisition.h>
#include <kelCore/process/kelAbstractProcessAcquisition_p.h>

#include <nubCore/nubNotice.h>

namespace {
void hand(const cv::Mat &matrix, QSharedPointer<kelDataImage> &image)
{
    if (!image)
        image.reset(new kelDataImage);
    image->setImage(matrix);
}
} // namespace

kelAbstractProcessAcquisition::kelAbstractProcessAcquisition()
    : kelAbstractProcess(*new kelAbstractProcessAcquisitionPrivate)
{ }

kelAbstractProcessAcquisition::kelAbstractProcessAcquisition(const kelAbstractProcessAcquisition &other)
    : kelAbstractProcess(*new kelAbstractProcessAcquisitionPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessAcquisition::kelAbstractProcessAcquisition(kelAbstractProcessAcquisitionPrivate &dd,
                                                             QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessAcquisition::~kelAbstractProcessAcquisition() = default;

void kelAbstractProcessAcquisition::setStream(QSharedPointer<kelAbstractDataStream> &stream)
{
    d_func()->stream = stream;
}

const QSharedPointer<kelAbstractDataStream> &kelAbstractProcessAcquisition::getStream() const
{
    return d_func()->stream;
}

bool kelAbstractProcessAcquisition::acquire()
{
    return nub::defaultBody<bool>(this, "virtual bool kelAbstractProcessAcquisition::acquire()");
}

QSharedPointer<kelDataImage> &kelAbstractProcessAcquisition::getImage() { return d_func()->image; }

QSharedPointer<kelDataImage> &kelAbstractProcessAcquisition::getDepth() { return d_func()->depth; }

void kelAbstractProcessAcquisition::setImage(cv::Mat &image) { hand(image, d_func()->image); }

void kelAbstractProcessAcquisition::setDepth(cv::Mat &depth) { hand(depth, d_func()->depth); }
