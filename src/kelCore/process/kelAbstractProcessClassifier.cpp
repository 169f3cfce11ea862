#include <kelCore/process/kelAbstractProcessClassifier.h>
#include <kelCore/process/kelAbstractProcessClassifier_p.h>

kelAbstractProcessClassifier::kelAbstractProcessClassifier()
    : kelAbstractProcess(*new kelAbstractProcessClassifierPrivate)
{ }

kelAbstractProcessClassifier::kelAbstractProcessClassifier(const kelAbstractProcessClassifier &other)
    : kelAbstractProcess(*new kelAbstractProcessClassifierPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessClassifier::kelAbstractProcessClassifier(kelAbstractProcessClassifierPrivate &dd,
                                                           QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessClassifier::~kelAbstractProcessClassifier() = default;

void kelAbstractProcessClassifier::setCalibration(QSharedPointer<kelAbstractDataCalibration> &calibration)
{
    d_func()->calibration = calibration;
}

void kelAbstractProcessClassifier::setBlobs(QList<QSharedPointer<kelDataBlob>> &blobs)
{
    d_func()->blobs = blobs;
}

const QSharedPointer<kelAbstractDataCalibration> &kelAbstractProcessClassifier::getCalibration() const
{
    return d_func()->calibration;
}

const QList<QSharedPointer<kelDataBlob>> &kelAbstractProcessClassifier::getBlobs() const
{
    return d_func()->blobs;
}

QList<QSharedPointer<kelDataPhysicalObject>> &kelAbstractProcessClassifier::getPhysicalObjects()
{
    return d_func()->physicalObjects;
}
