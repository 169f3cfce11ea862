#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataActor_p.h>

#include <nubCore/nubNotice.h>

#include <utility>

kelDataActor::kelDataActor() : kelDataActor(*new kelDataActorPrivate) { }

kelDataActor::kelDataActor(const kelDataActor &other)
    : kelDataActor(*new kelDataActorPrivate(*other.d_func()), other.parent())
{ }

kelDataActor::kelDataActor(kelDataActorPrivate &dd, QObject *parent) : kelAbstractData(dd, parent) { }

kelDataActor::~kelDataActor() { releaseTPO(); }

kelDataActor &kelDataActor::operator=(const kelDataActor &other)
{
    copy(other);
    return *this;
}

kelDataActor *kelDataActor::clone() { return new kelDataActor(*this); }

void kelDataActor::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    const auto *actor = nub::sameKindOrWarn<kelDataActor>(*this, other);
    if (!actor)
        return;

    setIdent(actor->getIdent());
    setType(actor->getType());
    setBoundingBox3D(actor->getBoundingBox3D());
    setBoundingBox2D(actor->getBoundingBox2D());
    setCurrentPosition(actor->getCurrentPosition());
    setTrajectory(actor->getTrajectory());
    setLPOList(actor->getLinkedPhysicalObjectList());
    setLPO(actor->getLPO());
    setSpeed(actor->getSpeed());
    setHasSon(actor->hasSon());
    setInformation3D(actor->getInformation3D());

    std::list<cv::Point> pixels;
    actor->getPixels(pixels);
    setPixels(pixels);
    std::list<cv::Point3f> voxels;
    actor->getVoxels(voxels);
    setVoxels(voxels);
}

QString kelDataActor::identifier() const { return QStringLiteral("kelDataActor"); }

unsigned int kelDataActor::getIdent() const { return d_func()->ident; }
void kelDataActor::setIdent(unsigned int ident) { d_func()->ident = ident; }

std::string kelDataActor::getType() const { return d_func()->type; }
void kelDataActor::setType(std::string type) { d_func()->type = std::move(type); }

BoundingBox3D kelDataActor::getBoundingBox3D() const { return d_func()->boundingBox3D; }
void kelDataActor::setBoundingBox3D(const BoundingBox3D &box) { d_func()->boundingBox3D = box; }

Information3D kelDataActor::getInformation3D() const { return d_func()->information3D; }
void kelDataActor::setInformation3D(const Information3D &information)
{
    d_func()->information3D = information;
}

cv::Rect kelDataActor::getBoundingBox2D() const { return d_func()->boundingBox2D; }
void kelDataActor::setBoundingBox2D(const cv::Rect &box) { d_func()->boundingBox2D = box; }

cv::Point3f kelDataActor::getCurrentPosition() const { return d_func()->currentPosition; }
void kelDataActor::setCurrentPosition(const cv::Point3f &position) { d_func()->currentPosition = position; }

const std::map<CSynchronizer, cv::Point3f> &kelDataActor::getTrajectory() const
{
    return d_func()->trajectory;
}

void kelDataActor::setTrajectory(const std::map<CSynchronizer, cv::Point3f> &trajectory)
{
    d_func()->trajectory = trajectory;
}

void kelDataActor::updateTrajectory(const CSynchronizer &sync)
{
    Q_D(kelDataActor);
    insert(sync, d->currentPosition, d->trajectory);
}

CSynchronizer kelDataActor::getSync() const
{
    Q_D(const kelDataActor);
    return d->trajectory.empty() ? d->sync : d->trajectory.rbegin()->first;
}

void kelDataActor::setSync(const CSynchronizer &sync) { d_func()->sync = sync; }

double kelDataActor::getSpeed() const { return d_func()->speed; }
void kelDataActor::setSpeed(double speed) { d_func()->speed = speed; }

bool kelDataActor::hasSon() const { return d_func()->hasSon; }
void kelDataActor::setHasSon(bool hasSon) { d_func()->hasSon = hasSon; }

double kelDataActor::getReliability() const { return d_func()->reliability; }
void kelDataActor::setReliability(double reliability) { d_func()->reliability = reliability; }

unsigned int kelDataActor::getCameraId() const { return d_func()->cameraId; }
void kelDataActor::setCameraId(unsigned int id) { d_func()->cameraId = id; }

std::vector<unsigned int> kelDataActor::getVtRefIds() const { return d_func()->VtRefIds; }
void kelDataActor::setVtRefIds(std::vector<unsigned int> ids) { d_func()->VtRefIds = std::move(ids); }

QSharedPointer<kelDataLinkedPhysicalObject> kelDataActor::getLPO() const { return d_func()->LPO; }
void kelDataActor::setLPO(const QSharedPointer<kelDataLinkedPhysicalObject> &object)
{
    d_func()->LPO = object;
}

std::list<QSharedPointer<kelDataLinkedPhysicalObject>> kelDataActor::getLinkedPhysicalObjectList() const
{
    return d_func()->linkedPhysicalObjects;
}

std::list<QSharedPointer<kelDataLinkedPhysicalObject>> kelDataActor::getRefLPOList()
{
    return d_func()->linkedPhysicalObjects;
}

void kelDataActor::setLPOList(const std::list<QSharedPointer<kelDataLinkedPhysicalObject>> &objects)
{
    d_func()->linkedPhysicalObjects = objects;
}

void kelDataActor::addLinkedPhysicalObject(QSharedPointer<kelDataLinkedPhysicalObject> object)
{
    d_func()->linkedPhysicalObjects.push_back(std::move(object));
}

void kelDataActor::setSkeleton(const SkeletonStructure &skeleton) { d_func()->skeleton = skeleton; }

cv::Point kelDataActor::getHead2dPosition() const { return d_func()->skeleton.head().position2D; }
cv::Point3f kelDataActor::getHead3dPosition() const { return d_func()->skeleton.head().position3D; }

void kelDataActor::setPixels(std::list<cv::Point> &pixels) { d_func()->pixels.swap(pixels); }
void kelDataActor::setVoxels(std::list<cv::Point3f> &voxels) { d_func()->voxels.swap(voxels); }

void kelDataActor::getPixels(std::list<cv::Point> &out) const { out = d_func()->pixels; }
void kelDataActor::getVoxels(std::list<cv::Point3f> &out) const { out = d_func()->voxels; }

void kelDataActor::releaseTPO()
{
    Q_D(kelDataActor);
    d->linkedPhysicalObjects.clear();
    d->pixels.clear();
    d->voxels.clear();
    d->trajectory.clear();
}
