#include <kelCore/process/kelAbstractProcessReAcquisition.h>
#include <kelCore/process/kelAbstractProcessReAcquisition_p.h>

#include <utility>

kelAbstractProcessReAcquisition::kelAbstractProcessReAcquisition()
    : kelAbstractProcess(*new kelAbstractProcessReAcquisitionPrivate)
{ }

kelAbstractProcessReAcquisition::kelAbstractProcessReAcquisition(const kelAbstractProcessReAcquisition &other)
    : kelAbstractProcess(*new kelAbstractProcessReAcquisitionPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessReAcquisition::kelAbstractProcessReAcquisition(kelAbstractProcessReAcquisitionPrivate &dd,
                                                                 QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessReAcquisition::~kelAbstractProcessReAcquisition() = default;

void kelAbstractProcessReAcquisition::setImage(QSharedPointer<kelDataImage> image)
{
    d_func()->image = std::move(image);
}

void kelAbstractProcessReAcquisition::setMTSPath(std::string path) { d_func()->mtsPath = std::move(path); }

void kelAbstractProcessReAcquisition::setActors(QList<QSharedPointer<kelDataActor>> actors)
{
    d_func()->inputActors = std::move(actors);
}

QList<QSharedPointer<kelDataActor>> kelAbstractProcessReAcquisition::getActors()
{
    return d_func()->outputActors;
}

const QSharedPointer<kelDataImage> &kelAbstractProcessReAcquisition::getImage() const
{
    return d_func()->image;
}

const std::string &kelAbstractProcessReAcquisition::getMTSPath() const { return d_func()->mtsPath; }

const QList<QSharedPointer<kelDataActor>> &kelAbstractProcessReAcquisition::getInputActors() const
{
    return d_func()->inputActors;
}

void kelAbstractProcessReAcquisition::setOutputActors(QList<QSharedPointer<kelDataActor>> actors)
{
    d_func()->outputActors = std::move(actors);
}
