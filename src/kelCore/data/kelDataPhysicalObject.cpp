#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/data/kelDataPhysicalObject_p.h>

#include <nubCore/nubNotice.h>

#include <iostream>

kelDataPhysicalObject::kelDataPhysicalObject() : kelDataPhysicalObject(*new kelDataPhysicalObjectPrivate) { }

kelDataPhysicalObject::kelDataPhysicalObject(const kelDataPhysicalObject &other)
    : kelDataPhysicalObject(*new kelDataPhysicalObjectPrivate(*other.d_func()), other.parent())
{ }

kelDataPhysicalObject::kelDataPhysicalObject(kelDataPhysicalObjectPrivate &dd, QObject *parent)
    : kelAbstractData(dd, parent)
{ }

kelDataPhysicalObject::~kelDataPhysicalObject() = default;

kelDataPhysicalObject &kelDataPhysicalObject::operator=(const kelDataPhysicalObject &other)
{
    copy(other);
    return *this;
}

kelDataPhysicalObject *kelDataPhysicalObject::clone() { return new kelDataPhysicalObject(*this); }

void kelDataPhysicalObject::copy(const nubAbstractObject &other)
{
    std::cout << "\n kelDataPhysicalObject, copy: ";
    kelAbstractData::copy(other);
    const auto *object = nub::sameKindOrWarn<kelDataPhysicalObject>(*this, other);
    if (!object)
        return;

    setId(object->getId());
    setPosition(object->getPosition());
    setHighestPosition(object->getHighestPosition());
    setLowestPosition(object->getLowestPosition());
    setCentroidPosition(object->getCentroidPosition());
    setBoundingBox2D(object->getBoundingBox2D());
    setBoundingBox3D(object->getBoundingBox3D());
    setInformation3D(object->getInformation3D());
    setType(object->getType());

    // The rest of the skeleton stays: deliberate, and unlike the copy constructor.
    Q_D(kelDataPhysicalObject);
    d->skeleton.head().position2D = object->getHead2dPosition();
    d->skeleton.head().position3D = object->getHead3dPosition();

    std::list<cv::Point> pixels;
    object->getPixels(pixels);
    setPixels(pixels);
    std::list<cv::Point3f> voxels;
    object->getVoxels(voxels);
    setVoxels(voxels);
}

QString kelDataPhysicalObject::identifier() const { return QStringLiteral("kelDataPhysicalObject"); }

int kelDataPhysicalObject::getId() const { return d_func()->id; }
void kelDataPhysicalObject::setId(int id) { d_func()->id = id; }

cv::Point3f kelDataPhysicalObject::getPosition() const { return d_func()->position; }
void kelDataPhysicalObject::setPosition(const cv::Point3f &position) { d_func()->position = position; }

cv::Point3f kelDataPhysicalObject::getCentroidPosition() const { return d_func()->centroidPosition; }
void kelDataPhysicalObject::setCentroidPosition(const cv::Point3f &position)
{
    d_func()->centroidPosition = position;
}

cv::Point3f kelDataPhysicalObject::getHighestPosition() const { return d_func()->highestPosition; }
void kelDataPhysicalObject::setHighestPosition(const cv::Point3f &position)
{
    d_func()->highestPosition = position;
}

cv::Point3f kelDataPhysicalObject::getLowestPosition() const { return d_func()->lowestPosition; }
void kelDataPhysicalObject::setLowestPosition(const cv::Point3f &position)
{
    d_func()->lowestPosition = position;
}

const cv::Rect &kelDataPhysicalObject::getBoundingBox2D() const { return d_func()->boundingBox2D; }
void kelDataPhysicalObject::setBoundingBox2D(const cv::Rect &box) { d_func()->boundingBox2D = box; }

BoundingBox3D kelDataPhysicalObject::getBoundingBox3D() const { return d_func()->boundingBox3D; }
void kelDataPhysicalObject::setBoundingBox3D(const BoundingBox3D &box) { d_func()->boundingBox3D = box; }

Information3D kelDataPhysicalObject::getInformation3D() const { return d_func()->information3D; }
void kelDataPhysicalObject::setInformation3D(const Information3D &information)
{
    d_func()->information3D = information;
}

std::string kelDataPhysicalObject::getType() const { return d_func()->type; }
void kelDataPhysicalObject::setType(const std::string &type) { d_func()->type = type; }

SkeletonStructure kelDataPhysicalObject::getSkeleton() const { return d_func()->skeleton; }
void kelDataPhysicalObject::setSkeleton(const SkeletonStructure &skeleton) { d_func()->skeleton = skeleton; }

cv::Point kelDataPhysicalObject::getHead2dPosition() const { return d_func()->skeleton.head().position2D; }
cv::Point3f kelDataPhysicalObject::getHead3dPosition() const { return d_func()->skeleton.head().position3D; }

void kelDataPhysicalObject::setPixels(std::list<cv::Point> &pixels) { d_func()->pixels.swap(pixels); }
void kelDataPhysicalObject::setVoxels(std::list<cv::Point3f> &voxels) { d_func()->voxels.swap(voxels); }

void kelDataPhysicalObject::getPixels(std::list<cv::Point> &out) const { out = d_func()->pixels; }
void kelDataPhysicalObject::getVoxels(std::list<cv::Point3f> &out) const { out = d_func()->voxels; }
