#include <kelCore/process/kelAbstractProcessBlobsGeneration.h>
#include <kelCore/process/kelAbstractProcessBlobsGeneration_p.h>

kelAbstractProcessBlobsGeneration::kelAbstractProcessBlobsGeneration()
    : kelAbstractProcess(*new kelAbstractProcessBlobsGenerationPrivate)
{ }

kelAbstractProcessBlobsGeneration::kelAbstractProcessBlobsGeneration(
    const kelAbstractProcessBlobsGeneration &other)
    : kelAbstractProcess(*new kelAbstractProcessBlobsGenerationPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessBlobsGeneration::kelAbstractProcessBlobsGeneration(
    kelAbstractProcessBlobsGenerationPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessBlobsGeneration::~kelAbstractProcessBlobsGeneration() = default;

void kelAbstractProcessBlobsGeneration::setSegmentationImage(QSharedPointer<kelDataImage> &image)
{
    d_func()->segmentationImage = image;
}

void kelAbstractProcessBlobsGeneration::setMinArea(int area) { d_func()->minArea = area; }

void kelAbstractProcessBlobsGeneration::setMinDimension(int dimension) { d_func()->minDimension = dimension; }

const QSharedPointer<kelDataImage> &kelAbstractProcessBlobsGeneration::getSegmentationImage() const
{
    return d_func()->segmentationImage;
}

int kelAbstractProcessBlobsGeneration::getMinArea() const { return d_func()->minArea; }

int kelAbstractProcessBlobsGeneration::getMinDimension() const { return d_func()->minDimension; }

QList<QSharedPointer<kelDataBlob>> &kelAbstractProcessBlobsGeneration::getBlobs() { return d_func()->blobs; }
