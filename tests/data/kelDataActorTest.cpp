#include <kelCore/data/kelDataActor.h>

// Nothing more is needed to use what the getters give.
static_assert(sizeof(*kelDataActor().getLPO()->getFatherLinks().front()) > 0);

#include <kelCore/data/kelDataActor_p.h>
#include <kelCore/data/kelDataEvent.h>

#include "support/Capture.h"

#include <QPointer>

#include <algorithm>
#include <iterator>
#include <memory>
#include <type_traits>

namespace {
using Object = QSharedPointer<kelDataLinkedPhysicalObject>;
using Objects = std::list<Object>;
using Trajectory = std::map<CSynchronizer, cv::Point3f>;
using Pixels = std::list<cv::Point>;
using Voxels = std::list<cv::Point3f>;
using Ids = std::vector<unsigned int>;

CSynchronizer at(qint64 msecs, unsigned int frame = 0)
{
    CSynchronizer sync;
    sync.setDateTime(QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC));
    sync.setFrameNumber(frame);
    return sync;
}

Object newObject() { return Object(new kelDataLinkedPhysicalObject); }

Pixels pixelsOf(const kelDataActor &actor)
{
    Pixels pixels{{-5, -5}};
    actor.getPixels(pixels);
    return pixels;
}

Voxels voxelsOf(const kelDataActor &actor)
{
    Voxels voxels{{-5, -5, -5}};
    actor.getVoxels(voxels);
    return voxels;
}

bool operator==(const BoundingBox3D &a, const BoundingBox3D &b)
{
    return std::equal(std::begin(a.values), std::end(a.values), std::begin(b.values));
}

BoundingBox3D box3D()
{
    BoundingBox3D box;
    for (int i = 0; i < 6; ++i)
        box.values[i] = 1.5f + i;
    return box;
}

Information3D information()
{
    Information3D info;
    info.setHeight(1);
    info.setWidth(2);
    info.setDepth(3);
    info.setPosition({4, 5, 6});
    info.setHighestPosition({7, 8, 9});
    info.setLowestPosition({10, 11, 12});
    info.setCentroidPosition({13, 14, 15});
    return info;
}

void expectInformation(const Information3D &info)
{
    EXPECT_EQ(info.getHeight(), 1.f);
    EXPECT_EQ(info.getWidth(), 2.f);
    EXPECT_EQ(info.getDepth(), 3.f);
    EXPECT_EQ(info.getPosition(), cv::Point3f(4, 5, 6));
    EXPECT_EQ(info.getHighestPosition(), cv::Point3f(7, 8, 9));
    EXPECT_EQ(info.getLowestPosition(), cv::Point3f(10, 11, 12));
    EXPECT_EQ(info.getCentroidPosition(), cv::Point3f(13, 14, 15));
}

SkeletonStructure skeleton()
{
    SkeletonStructure bones;
    for (int i = 0; i < 3; ++i) {
        bones.joints[i].position2D = {10 + i, 20 + i};
        bones.joints[i].position3D = cv::Point3f(30.f + i, 40.f + i, 50.f + i);
    }
    for (int i = 0; i < 4; ++i)
        bones.reserved[i] = (std::int64_t(1) << 40) + i;
    return bones;
}

/// Every field differs from its start value.
void fill(kelDataActor &actor, const Object &own, const Objects &attached)
{
    actor.setIdent(17);
    actor.setType("person");
    actor.setBoundingBox3D(box3D());
    actor.setInformation3D(information());
    actor.setBoundingBox2D({1, 2, 3, 4});
    actor.setCurrentPosition({5, 6, 7});
    actor.setTrajectory({{at(100, 1), {1, 1, 1}}, {at(200, 2), {2, 2, 2}}});
    actor.setSkeleton(skeleton());
    Pixels pixels{{1, 2}, {3, 4}};
    actor.setPixels(pixels);
    Voxels voxels{{1, 2, 3}, {4, 5, 6}};
    actor.setVoxels(voxels);
    actor.setLPO(own);
    actor.setLPOList(attached);
    actor.setHasSon(true);
    actor.setSpeed(1.25);
    actor.setReliability(0.5);
    actor.setCameraId(3);
    actor.setVtRefIds({8, 9});
    actor.setSync(at(900, 9));
}

/// The fields that the copy constructor and `copy` both carry.
void expectCommonFields(const kelDataActor &actor)
{
    EXPECT_EQ(actor.getIdent(), 17u);
    EXPECT_EQ(actor.getType(), "person");
    EXPECT_TRUE(actor.getBoundingBox3D() == box3D());
    expectInformation(actor.getInformation3D());
    EXPECT_EQ(actor.getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(actor.getCurrentPosition(), cv::Point3f(5, 6, 7));
    EXPECT_EQ(actor.getTrajectory(), (Trajectory{{at(100), {1, 1, 1}}, {at(200), {2, 2, 2}}}));
    EXPECT_EQ(pixelsOf(actor), (Pixels{{1, 2}, {3, 4}}));
    EXPECT_EQ(voxelsOf(actor), (Voxels{{1, 2, 3}, {4, 5, 6}}));
}

/// Shows the whole skeleton and the stored time stamp, which have no getters of their own.
class OpenActor : public kelDataActor
{
public:
    OpenActor() = default;
    OpenActor(const OpenActor &other) : kelDataActor(other) { }
    OpenActor &operator=(const OpenActor &other)
    {
        copy(other);
        return *this;
    }
    const kelDataActorPrivate &state() const { return static_cast<const kelDataActorPrivate &>(*nub_d); }
};

void expectSkeleton(const SkeletonStructure &bones, const SkeletonStructure &expected)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(bones.joints[i].position2D, expected.joints[i].position2D) << "joint " << i;
        EXPECT_EQ(bones.joints[i].position3D, expected.joints[i].position3D) << "joint " << i;
    }
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(bones.reserved[i], expected.reserved[i]) << "field " << i;
}

/// Claims to be an actor without being one.
class Impostor : public kelDataEvent
{
public:
    QString identifier() const override { return QStringLiteral("kelDataActor"); }
};

template <class Actual, class Expected> constexpr bool is = std::is_same_v<Actual, Expected>;
} // namespace

TEST(kelDataActorTest, AFreshActorHasItsStartValues)
{
    OpenActor actor;
    EXPECT_EQ(actor.getIdent(), 4294967295u);
    EXPECT_EQ(actor.getType(), "");
    EXPECT_TRUE(actor.getBoundingBox3D() == BoundingBox3D());
    EXPECT_EQ(actor.getInformation3D().getHeight(), 0.f);
    EXPECT_EQ(actor.getInformation3D().getCentroidPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(actor.getBoundingBox2D(), cv::Rect(-1, -1, 0, 0));
    EXPECT_EQ(actor.getCurrentPosition(), cv::Point3f(0, 0, 0));
    EXPECT_TRUE(actor.getTrajectory().empty());
    EXPECT_EQ(actor.getHead2dPosition(), cv::Point(-1, -1));
    EXPECT_EQ(actor.getHead3dPosition(), cv::Point3f(0, 0, 0));
    expectSkeleton(actor.state().skeleton, SkeletonStructure());
    EXPECT_EQ(actor.state().skeleton.joints[2].position2D, cv::Point(-1, -1));
    EXPECT_TRUE(pixelsOf(actor).empty());
    EXPECT_TRUE(voxelsOf(actor).empty());
    EXPECT_TRUE(actor.getLPO().isNull());
    EXPECT_TRUE(actor.getLinkedPhysicalObjectList().empty());
    EXPECT_TRUE(actor.getRefLPOList().empty());
    EXPECT_FALSE(actor.hasSon());
    EXPECT_EQ(actor.getSpeed(), 0.0);
    EXPECT_EQ(actor.getReliability(), 0.0);
    EXPECT_EQ(actor.getCameraId(), 0u);
    EXPECT_TRUE(actor.getVtRefIds().empty());
    EXPECT_EQ(actor.getSync(), CSynchronizer());
    EXPECT_EQ(actor.parent(), nullptr);
}

TEST(kelDataActorTest, ItNamesItselfAndHoldsNoDataOfItsOwn)
{
    const kelDataActor actor;
    EXPECT_EQ(actor.identifier(), "kelDataActor");
    EXPECT_STREQ(actor.metaObject()->className(), "kelDataActor");
    EXPECT_EQ(sizeof(kelDataActor), sizeof(nubAbstractObject));
    EXPECT_TRUE((std::is_base_of_v<kelAbstractData, kelDataActor>));
    EXPECT_TRUE((std::is_base_of_v<kelAbstractDataPrivate, kelDataActorPrivate>));
}

TEST(kelDataActorTest, TheAccessorsHaveTheirTypes)
{
    using A = kelDataActor;
    EXPECT_TRUE((is<decltype(&A::getIdent), unsigned int (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setIdent), void (A::*)(unsigned int)>));
    EXPECT_TRUE((is<decltype(&A::getType), std::string (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setType), void (A::*)(std::string)>));
    EXPECT_TRUE((is<decltype(&A::getBoundingBox3D), BoundingBox3D (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setBoundingBox3D), void (A::*)(const BoundingBox3D &)>));
    EXPECT_TRUE((is<decltype(&A::getInformation3D), Information3D (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setInformation3D), void (A::*)(const Information3D &)>));
    EXPECT_TRUE((is<decltype(&A::getBoundingBox2D), cv::Rect (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setBoundingBox2D), void (A::*)(const cv::Rect &)>));
    EXPECT_TRUE((is<decltype(&A::getCurrentPosition), cv::Point3f (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setCurrentPosition), void (A::*)(const cv::Point3f &)>));
    EXPECT_TRUE((is<decltype(&A::getTrajectory), const Trajectory &(A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setTrajectory), void (A::*)(const Trajectory &)>));
    EXPECT_TRUE((is<decltype(&A::getSpeed), double (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setSpeed), void (A::*)(double)>));
    EXPECT_TRUE((is<decltype(&A::hasSon), bool (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setHasSon), void (A::*)(bool)>));
    EXPECT_TRUE((is<decltype(&A::getReliability), double (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setReliability), void (A::*)(double)>));
    EXPECT_TRUE((is<decltype(&A::getCameraId), unsigned int (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setCameraId), void (A::*)(unsigned int)>));
    EXPECT_TRUE((is<decltype(&A::getVtRefIds), Ids (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setVtRefIds), void (A::*)(Ids)>));
    EXPECT_TRUE((is<decltype(&A::getLPO), Object (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setLPO), void (A::*)(const Object &)>));
    EXPECT_TRUE((is<decltype(&A::getLinkedPhysicalObjectList), Objects (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::getRefLPOList), Objects (A::*)()>));
    EXPECT_TRUE((is<decltype(&A::setLPOList), void (A::*)(const Objects &)>));
    EXPECT_TRUE((is<decltype(&A::addLinkedPhysicalObject), void (A::*)(Object)>));
    EXPECT_TRUE((is<decltype(&A::getHead2dPosition), cv::Point (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::getHead3dPosition), cv::Point3f (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setSkeleton), void (A::*)(const SkeletonStructure &)>));
    EXPECT_TRUE((is<decltype(&A::getPixels), void (A::*)(Pixels &) const>));
    EXPECT_TRUE((is<decltype(&A::setPixels), void (A::*)(Pixels &)>));
    EXPECT_TRUE((is<decltype(&A::getVoxels), void (A::*)(Voxels &) const>));
    EXPECT_TRUE((is<decltype(&A::setVoxels), void (A::*)(Voxels &)>));
    EXPECT_TRUE((is<decltype(&A::updateTrajectory), void (A::*)(const CSynchronizer &)>));
    EXPECT_TRUE((is<decltype(&A::getSync), CSynchronizer (A::*)() const>));
    EXPECT_TRUE((is<decltype(&A::setSync), void (A::*)(const CSynchronizer &)>));
    EXPECT_TRUE((is<decltype(&A::releaseTPO), void (A::*)()>));
}

TEST(kelDataActorTest, EachSetterStoresWhatItIsGivenInItsOwnField)
{
    const Object own = newObject();
    const Objects attached{newObject(), newObject()};
    OpenActor actor;
    fill(actor, own, attached);
    expectCommonFields(actor);
    expectSkeleton(actor.state().skeleton, skeleton());
    EXPECT_EQ(actor.getHead2dPosition(), cv::Point(10, 20));
    EXPECT_EQ(actor.getHead3dPosition(), cv::Point3f(30, 40, 50));
    EXPECT_EQ(actor.getLPO(), own);
    EXPECT_EQ(actor.getLinkedPhysicalObjectList(), attached);
    EXPECT_TRUE(actor.hasSon());
    EXPECT_EQ(actor.getSpeed(), 1.25);
    EXPECT_EQ(actor.getReliability(), 0.5);
    EXPECT_EQ(actor.getCameraId(), 3u);
    EXPECT_EQ(actor.getVtRefIds(), (Ids{8, 9}));
    EXPECT_EQ(actor.state().sync.getFrameNumber(), 9u);
}

TEST(kelDataActorTest, ThePositionInThe3DInformationIsAnotherField)
{
    kelDataActor actor;
    actor.setInformation3D(information());
    actor.setCurrentPosition({1, 1, 1});
    expectInformation(actor.getInformation3D());
}

TEST(kelDataActorTest, TheTrajectoryIsReturnedAsTheMapItselfAndSetByCopy)
{
    kelDataActor actor;
    const Trajectory &trajectory = actor.getTrajectory();
    Trajectory given{{at(1), {1, 1, 1}}};
    actor.setTrajectory(given);
    given[at(2)] = {2, 2, 2};
    EXPECT_EQ(trajectory, (Trajectory{{at(1), {1, 1, 1}}}));
    actor.setTrajectory({{at(3), {3, 3, 3}}});
    EXPECT_EQ(trajectory, (Trajectory{{at(3), {3, 3, 3}}}));
}

TEST(kelDataActorTest, ReplacingTheTrajectoryByItselfKeepsIt)
{
    kelDataActor actor;
    actor.setTrajectory({{at(1), {1, 1, 1}}});
    actor.setTrajectory(actor.getTrajectory());
    EXPECT_EQ(actor.getTrajectory(), (Trajectory{{at(1), {1, 1, 1}}}));
}

TEST(kelDataActorTest, TheTrackReferencesAreReplacedWhole)
{
    kelDataActor actor;
    actor.setVtRefIds({1, 2, 3});
    actor.setVtRefIds({4294967295u});
    Ids ids = actor.getVtRefIds();
    EXPECT_EQ(ids, (Ids{4294967295u}));
    ids.push_back(5);
    EXPECT_EQ(actor.getVtRefIds().size(), 1u);
}

TEST(kelDataActorTest, UpdatingTheTrajectoryAddsTheCurrentPosition)
{
    kelDataActor actor;
    actor.setCurrentPosition({1, 2, 3});
    actor.updateTrajectory(at(10));
    actor.setCurrentPosition({4, 5, 6});
    actor.updateTrajectory(at(20));
    EXPECT_EQ(actor.getTrajectory(), (Trajectory{{at(10), {1, 2, 3}}, {at(20), {4, 5, 6}}}));
}

TEST(kelDataActorTest, UpdatingTheTrajectoryTwiceForOneTimeKeepsTheFirstPosition)
{
    kelDataActor actor;
    actor.setCurrentPosition({1, 2, 3});
    actor.updateTrajectory(at(10, 1));
    actor.setCurrentPosition({4, 5, 6});
    actor.updateTrajectory(at(10, 2));
    EXPECT_EQ(actor.getTrajectory(), (Trajectory{{at(10), {1, 2, 3}}}));
    EXPECT_EQ(actor.getTrajectory().begin()->first.getFrameNumber(), 1u);
}

TEST(kelDataActorTest, WithoutATrajectoryTheTimeStampIsTheOneSet)
{
    kelDataActor actor;
    actor.setSync(at(50, 5));
    EXPECT_EQ(actor.getSync(), at(50));
    EXPECT_EQ(actor.getSync().getFrameNumber(), 5u);
}

TEST(kelDataActorTest, WithATrajectoryTheTimeStampIsItsLatest)
{
    kelDataActor actor;
    actor.updateTrajectory(at(30, 3));
    actor.updateTrajectory(at(40, 4));
    actor.updateTrajectory(at(20, 2));
    actor.setSync(at(50, 5));
    EXPECT_EQ(actor.getSync(), at(40));
    EXPECT_EQ(actor.getSync().getFrameNumber(), 4u);
    actor.setTrajectory({});
    EXPECT_EQ(actor.getSync(), at(50));
    EXPECT_EQ(actor.getSync().getFrameNumber(), 5u);
}

TEST(kelDataActorTest, LinkedObjectsAreAppendedInOrderWithoutACheckForDuplicates)
{
    const Object a = newObject();
    const Object b = newObject();
    kelDataActor actor;
    actor.addLinkedPhysicalObject(a);
    actor.addLinkedPhysicalObject(b);
    actor.addLinkedPhysicalObject(a);
    EXPECT_EQ(actor.getLinkedPhysicalObjectList(), (Objects{a, b, a}));
    EXPECT_TRUE(actor.getLPO().isNull());
}

TEST(kelDataActorTest, BothListGettersReturnACopy)
{
    const Object a = newObject();
    kelDataActor actor;
    Objects given{a};
    actor.setLPOList(given);
    given.clear();
    Objects list = actor.getLinkedPhysicalObjectList();
    list.clear();
    Objects ref = actor.getRefLPOList();
    EXPECT_EQ(ref, (Objects{a}));
    ref.clear();
    EXPECT_EQ(actor.getRefLPOList(), (Objects{a}));
}

TEST(kelDataActorTest, TheListIsReplacedWhole)
{
    const Object a = newObject();
    kelDataActor actor;
    actor.addLinkedPhysicalObject(newObject());
    actor.setLPOList({a});
    EXPECT_EQ(actor.getLinkedPhysicalObjectList(), (Objects{a}));
}

TEST(kelDataActorTest, TheActorHoldsItsLinkedObjectsStrongly)
{
    Object own = newObject();
    Object attached = newObject();
    const QPointer<kelDataLinkedPhysicalObject> ownAlive(own.data());
    const QPointer<kelDataLinkedPhysicalObject> attachedAlive(attached.data());
    {
        kelDataActor actor;
        actor.setLPO(own);
        actor.addLinkedPhysicalObject(attached);
        own.clear();
        attached.clear();
        EXPECT_FALSE(ownAlive.isNull());
        EXPECT_FALSE(attachedAlive.isNull());
    }
    EXPECT_TRUE(ownAlive.isNull());
    EXPECT_TRUE(attachedAlive.isNull());
}

TEST(kelDataActorTest, SettingPointsExchangesTheListsWithoutCopying)
{
    kelDataActor actor;
    Pixels pixels{{1, 2}, {3, 4}, {5, 6}};
    const cv::Point *first = &pixels.front();
    actor.setPixels(pixels);
    EXPECT_TRUE(pixels.empty());
    EXPECT_EQ(pixelsOf(actor), (Pixels{{1, 2}, {3, 4}, {5, 6}}));
    Pixels others{{7, 8}};
    actor.setPixels(others);
    EXPECT_EQ(others, (Pixels{{1, 2}, {3, 4}, {5, 6}}));
    EXPECT_EQ(&others.front(), first);

    Voxels voxels{{1, 2, 3}};
    const cv::Point3f *firstVoxel = &voxels.front();
    actor.setVoxels(voxels);
    EXPECT_TRUE(voxels.empty());
    EXPECT_EQ(voxelsOf(actor), (Voxels{{1, 2, 3}}));
    Voxels otherVoxels{{7, 8, 9}};
    actor.setVoxels(otherVoxels);
    EXPECT_EQ(&otherVoxels.front(), firstVoxel);
    EXPECT_EQ(voxelsOf(actor), (Voxels{{7, 8, 9}}));
}

TEST(kelDataActorTest, GettingPointsReplacesTheCallersListByACopy)
{
    kelDataActor actor;
    Pixels pixels{{1, 2}};
    actor.setPixels(pixels);
    Pixels out{{9, 9}, {9, 9}};
    actor.getPixels(out);
    EXPECT_EQ(out, (Pixels{{1, 2}}));
    out.clear();
    EXPECT_EQ(pixelsOf(actor), (Pixels{{1, 2}}));

    Voxels voxels{{1, 2, 3}};
    actor.setVoxels(voxels);
    Voxels outVoxels{{9, 9, 9}, {9, 9, 9}};
    actor.getVoxels(outVoxels);
    EXPECT_EQ(outVoxels, (Voxels{{1, 2, 3}}));
    outVoxels.clear();
    EXPECT_EQ(voxelsOf(actor), (Voxels{{1, 2, 3}}));
}

TEST(kelDataActorTest, ReleaseEmptiesListPointsAndTrajectoryAndNothingElse)
{
    const Object own = newObject();
    OpenActor actor;
    fill(actor, own, {newObject(), newObject()});
    const QPointer<kelDataLinkedPhysicalObject> attached(actor.getRefLPOList().front().data());
    actor.releaseTPO();
    EXPECT_TRUE(actor.getLinkedPhysicalObjectList().empty());
    EXPECT_TRUE(attached.isNull());
    EXPECT_TRUE(pixelsOf(actor).empty());
    EXPECT_TRUE(voxelsOf(actor).empty());
    EXPECT_TRUE(actor.getTrajectory().empty());

    EXPECT_EQ(actor.getLPO(), own);
    EXPECT_EQ(actor.getIdent(), 17u);
    EXPECT_EQ(actor.getType(), "person");
    EXPECT_TRUE(actor.getBoundingBox3D() == box3D());
    expectInformation(actor.getInformation3D());
    EXPECT_EQ(actor.getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(actor.getCurrentPosition(), cv::Point3f(5, 6, 7));
    expectSkeleton(actor.state().skeleton, skeleton());
    EXPECT_TRUE(actor.hasSon());
    EXPECT_EQ(actor.getSpeed(), 1.25);
    EXPECT_EQ(actor.getReliability(), 0.5);
    EXPECT_EQ(actor.getCameraId(), 3u);
    EXPECT_EQ(actor.getVtRefIds(), (Ids{8, 9}));
    EXPECT_EQ(actor.getSync(), at(900));
}

TEST(kelDataActorTest, ReleaseDropsTheLinkedObjectsBeforeThePointsAndTheTrajectory)
{
    kelDataActor actor;
    fill(actor, Object(), {newObject()});
    bool seen = false;
    QObject::connect(actor.getRefLPOList().front().data(), &QObject::destroyed, [&] {
        seen = true;
        EXPECT_EQ(pixelsOf(actor).size(), 2u);
        EXPECT_EQ(voxelsOf(actor).size(), 2u);
        EXPECT_EQ(actor.getTrajectory().size(), 2u);
    });
    actor.releaseTPO();
    EXPECT_TRUE(seen);
}

TEST(kelDataActorTest, DestructionReleasesTheListBeforeTheActorsOwnObject)
{
    QStringList order;
    Object own = newObject();
    QObject::connect(own.data(), &QObject::destroyed, [&] { order << "own"; });
    Object attached = newObject();
    QObject::connect(attached.data(), &QObject::destroyed, [&] { order << "attached"; });
    {
        kelDataActor actor;
        actor.setLPO(own);
        actor.addLinkedPhysicalObject(attached);
        own.clear();
        attached.clear();
    }
    EXPECT_EQ(order, (QStringList{"attached", "own"}));
}

TEST(kelDataActorTest, DestructionReleasesTheListWhileTheActorIsStillAnActor)
{
    kelDataActor *actor = new kelDataActor;
    fill(*actor, Object(), {newObject()});
    QString identifier;
    QObject::connect(actor->getRefLPOList().front().data(), &QObject::destroyed, [&] {
        identifier = static_cast<nubAbstractObject *>(actor)->identifier();
        EXPECT_EQ(pixelsOf(*actor).size(), 2u);
    });
    delete actor;
    EXPECT_EQ(identifier, "kelDataActor");
}

TEST(kelDataActorTest, CloneCarriesTheFrameAndTheSkeletonButNoLinks)
{
    OpenActor actor;
    fill(actor, newObject(), {newObject(), newObject()});
    actor.addSpecificProperty("k", 7);
    QVariantMap map{{"recorded", 1}};
    actor.setMap(map);
    MessageCapture messages;
    const OpenActor copy(actor);
    EXPECT_TRUE(messages.lines().isEmpty());
    expectCommonFields(copy);
    expectSkeleton(copy.state().skeleton, skeleton());
    EXPECT_EQ(copy.getSpecificProperties(), (QVariantMap{{"k", 7}}));
    EXPECT_TRUE(OpenActor(copy).getMap().isEmpty());

    EXPECT_TRUE(copy.getLPO().isNull());
    EXPECT_TRUE(copy.getLinkedPhysicalObjectList().empty());
    EXPECT_FALSE(copy.hasSon());
    EXPECT_TRUE(copy.getVtRefIds().empty());
    EXPECT_EQ(copy.state().sync, CSynchronizer());
    EXPECT_EQ(copy.getSpeed(), 0.0);
    EXPECT_EQ(copy.getReliability(), 0.0);
    EXPECT_EQ(copy.getCameraId(), 0u);

    const std::unique_ptr<kelDataActor> clone(actor.clone());
    expectCommonFields(*clone);
    EXPECT_EQ(clone->getHead2dPosition(), cv::Point(10, 20));
    EXPECT_TRUE(clone->getMap().isEmpty());
    EXPECT_TRUE(clone->getLinkedPhysicalObjectList().empty());
    EXPECT_TRUE(clone->getLPO().isNull());
    EXPECT_EQ(actor.getLinkedPhysicalObjectList().size(), 2u);
}

TEST(kelDataActorTest, TheTimeStampOfACloneIsTheLatestOfItsTrajectory)
{
    kelDataActor actor;
    actor.setSync(at(900));
    const kelDataActor without(actor);
    EXPECT_EQ(without.getSync(), CSynchronizer());
    actor.updateTrajectory(at(100, 1));
    const kelDataActor with(actor);
    EXPECT_EQ(with.getSync(), at(100));
}

TEST(kelDataActorTest, AssignmentSharesTheLinksAndKeepsTheSkeleton)
{
    const Object own = newObject();
    const Objects attached{newObject(), newObject()};
    OpenActor from;
    fill(from, own, attached);
    from.addSpecificProperty("k", 7);
    QVariantMap map{{"recorded", 1}};
    from.setMap(map);

    OpenActor to;
    SkeletonStructure bones;
    bones.head().position2D = {70, 71};
    bones.joints[1].position3D = {72, 73, 74};
    bones.reserved[3] = 75;
    to.setSkeleton(bones);
    to.setReliability(0.9);
    to.setCameraId(6);
    to.setVtRefIds({60});
    to.setSync(at(600, 6));
    to.addLinkedPhysicalObject(newObject());
    Pixels pixels{{9, 9}};
    to.setPixels(pixels);
    to.updateTrajectory(at(5));

    MessageCapture messages;
    kelDataActor &result = static_cast<kelDataActor &>(to).operator=(from);
    EXPECT_EQ(&result, &to);
    EXPECT_TRUE(messages.lines().isEmpty());

    expectCommonFields(to);
    EXPECT_EQ(to.getLPO(), own);
    EXPECT_EQ(to.getLinkedPhysicalObjectList(), attached);
    EXPECT_EQ(to.getSpeed(), 1.25);
    EXPECT_TRUE(to.hasSon());

    expectSkeleton(to.state().skeleton, bones);
    EXPECT_EQ(to.getReliability(), 0.9);
    EXPECT_EQ(to.getCameraId(), 6u);
    EXPECT_EQ(to.getVtRefIds(), (Ids{60}));
    EXPECT_EQ(to.state().sync.getFrameNumber(), 6u);
    EXPECT_TRUE(to.getSpecificProperties().isEmpty());
    EXPECT_TRUE(to.getMap().isEmpty());

    // The source is as it was.
    expectCommonFields(from);
    EXPECT_EQ(from.getLinkedPhysicalObjectList(), attached);
    EXPECT_EQ(from.getLPO(), own);
}

TEST(kelDataActorTest, AssignmentReplacesTheListBeforeTheActorsOwnObject)
{
    QStringList order;
    kelDataActor actor;
    actor.setLPO(newObject());
    actor.addLinkedPhysicalObject(newObject());
    QObject::connect(actor.getLPO().data(), &QObject::destroyed, [&] { order << "own"; });
    QObject::connect(actor.getRefLPOList().front().data(), &QObject::destroyed, [&] { order << "attached"; });
    actor = kelDataActor();
    EXPECT_EQ(order, (QStringList{"attached", "own"}));
}

TEST(kelDataActorTest, AssignmentThroughTheBaseIsVirtual)
{
    kelDataActor from;
    from.setIdent(5);
    kelDataActor to;
    static_cast<kelAbstractData &>(to) = from;
    EXPECT_EQ(to.getIdent(), 5u);
}

TEST(kelDataActorTest, SelfAssignmentLosesNothing)
{
    const Object own = newObject();
    const Objects attached{newObject(), newObject()};
    OpenActor actor;
    fill(actor, own, attached);
    const kelDataActor &same = actor;
    static_cast<kelDataActor &>(actor) = same;
    expectCommonFields(actor);
    expectSkeleton(actor.state().skeleton, skeleton());
    EXPECT_EQ(actor.getLPO(), own);
    EXPECT_EQ(actor.getLinkedPhysicalObjectList(), attached);
    EXPECT_TRUE(actor.hasSon());
    EXPECT_EQ(actor.getSpeed(), 1.25);
    EXPECT_EQ(actor.getReliability(), 0.5);
    EXPECT_EQ(actor.getCameraId(), 3u);
    EXPECT_EQ(actor.getVtRefIds(), (Ids{8, 9}));
}

TEST(kelDataActorTest, CopyFromAnEventWarnsTwiceAndChangesNothing)
{
    const Object own = newObject();
    const Objects attached{newObject()};
    kelDataActor actor;
    fill(actor, own, attached);
    const kelDataEvent event;
    MessageCapture messages;
    actor.copy(event);
    EXPECT_EQ(messages.lines(), (QStringList{slicingWarning(), slicingWarning()}));
    expectCommonFields(actor);
    EXPECT_EQ(actor.getLPO(), own);
    EXPECT_EQ(actor.getLinkedPhysicalObjectList(), attached);
}

TEST(kelDataActorTest, AnotherClassUnderTheSameNameIsNotCopied)
{
    kelDataActor actor;
    actor.setIdent(5);
    MessageCapture messages;
    actor.copy(Impostor());
    EXPECT_EQ(actor.getIdent(), 5u);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
}
