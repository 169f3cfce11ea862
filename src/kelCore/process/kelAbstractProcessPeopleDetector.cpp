#include <kelCore/process/kelAbstractProcessPeopleDetector.h>
#include <kelCore/process/kelAbstractProcessPeopleDetector_p.h>

kelAbstractProcessPeopleDetector::kelAbstractProcessPeopleDetector()
    : kelAbstractProcess(*new kelAbstractProcessPeopleDetectorPrivate)
{ }

kelAbstractProcessPeopleDetector::kelAbstractProcessPeopleDetector(
    const kelAbstractProcessPeopleDetector &other)
    : kelAbstractProcess(*new kelAbstractProcessPeopleDetectorPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessPeopleDetector::kelAbstractProcessPeopleDetector(
    kelAbstractProcessPeopleDetectorPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessPeopleDetector::~kelAbstractProcessPeopleDetector() = default;

const kelDataImage &kelAbstractProcessPeopleDetector::getImage() const { return d_func()->image; }

void kelAbstractProcessPeopleDetector::keepImage(const kelDataImage &image)
{
    d_func()->image.setImage(image.getImage()); // an assignment would refuse images of derived classes
}
