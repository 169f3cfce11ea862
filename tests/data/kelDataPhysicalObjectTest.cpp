#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include "support/Capture.h"

#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <type_traits>

namespace {

const char copyTrace[] = "\n kelDataPhysicalObject, copy: ";

/// A skeleton in which every number is its own.
SkeletonStructure skeletonFrom(int first)
{
    SkeletonStructure skeleton;
    for (SkeletonJoint &joint : skeleton.joints) {
        joint.position2D = cv::Point(first, first + 1);
        joint.position3D = cv::Point3f(first + 2.f, first + 3.f, first + 4.f);
        first += 5;
    }
    for (std::int64_t &field : skeleton.reserved)
        field = first++;
    return skeleton;
}

bool sameJoint(const SkeletonJoint &a, const SkeletonJoint &b)
{
    return a.position2D == b.position2D && a.position3D == b.position3D;
}

std::list<cv::Point> pixelsOf(const kelDataPhysicalObject &object)
{
    std::list<cv::Point> pixels{{99, 99}};
    object.getPixels(pixels);
    return pixels;
}

std::list<cv::Point3f> voxelsOf(const kelDataPhysicalObject &object)
{
    std::list<cv::Point3f> voxels{{99, 99, 99}};
    object.getVoxels(voxels);
    return voxels;
}

const BoundingBox3D someBox3D{{1, 2, 3, 4, 5, 6}};

void fill(kelDataPhysicalObject &object)
{
    object.setId(7);
    object.setPosition(cv::Point3f(1, 2, 3));
    object.setCentroidPosition(cv::Point3f(4, 5, 6));
    object.setHighestPosition(cv::Point3f(7, 8, 9));
    object.setLowestPosition(cv::Point3f(10, 11, 12));
    object.setBoundingBox2D(cv::Rect(13, 14, 15, 16));
    object.setBoundingBox3D(someBox3D);
    Information3D information;
    information.setHeight(17);
    information.setCentroidPosition(cv::Point3f(18, 19, 20));
    object.setInformation3D(information);
    object.setType("a person");
    object.setSkeleton(skeletonFrom(100));
    std::list<cv::Point> pixels{{1, 2}, {3, 4}, {5, 6}};
    object.setPixels(pixels);
    std::list<cv::Point3f> voxels{{1, 2, 3}, {4, 5, 6}};
    object.setVoxels(voxels);
}

/// Everything of `fill` but the skeleton, of which only the head is looked at.
void expectFilled(const kelDataPhysicalObject &object)
{
    EXPECT_EQ(object.getId(), 7);
    EXPECT_EQ(object.getPosition(), cv::Point3f(1, 2, 3));
    EXPECT_EQ(object.getCentroidPosition(), cv::Point3f(4, 5, 6));
    EXPECT_EQ(object.getHighestPosition(), cv::Point3f(7, 8, 9));
    EXPECT_EQ(object.getLowestPosition(), cv::Point3f(10, 11, 12));
    EXPECT_EQ(object.getBoundingBox2D(), cv::Rect(13, 14, 15, 16));
    const BoundingBox3D box = object.getBoundingBox3D();
    EXPECT_EQ(std::memcmp(&box, &someBox3D, sizeof box), 0);
    EXPECT_EQ(object.getInformation3D().getHeight(), 17);
    EXPECT_EQ(object.getInformation3D().getCentroidPosition(), cv::Point3f(18, 19, 20));
    EXPECT_EQ(object.getType(), "a person");
    EXPECT_EQ(object.getHead2dPosition(), cv::Point(100, 101));
    EXPECT_EQ(object.getHead3dPosition(), cv::Point3f(102, 103, 104));
    EXPECT_EQ(pixelsOf(object), (std::list<cv::Point>{{1, 2}, {3, 4}, {5, 6}}));
    EXPECT_EQ(voxelsOf(object), (std::list<cv::Point3f>{{1, 2, 3}, {4, 5, 6}}));
}

} // namespace

TEST(kelDataPhysicalObjectTest, AFreshObjectIsNotYetIdentified)
{
    const kelDataPhysicalObject object;
    EXPECT_EQ(object.parent(), nullptr);
    EXPECT_EQ(object.identifier(), "kelDataPhysicalObject");
    EXPECT_EQ(object.getId(), -1);
    EXPECT_EQ(object.getPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getCentroidPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getHighestPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getLowestPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getBoundingBox2D(), cv::Rect(-1, -1, 0, 0));
    for (const float value : object.getBoundingBox3D().values)
        EXPECT_EQ(value, 0);
    EXPECT_EQ(object.getInformation3D().getHeight(), 0);
    EXPECT_EQ(object.getInformation3D().getPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getType(), "");
    EXPECT_EQ(object.getHead2dPosition(), cv::Point(-1, -1));
    EXPECT_EQ(object.getHead3dPosition(), cv::Point3f(0, 0, 0));
    for (const SkeletonJoint &joint : object.getSkeleton().joints)
        EXPECT_TRUE(sameJoint(joint, SkeletonJoint()));
    for (const std::int64_t field : object.getSkeleton().reserved)
        EXPECT_EQ(field, 0);
    EXPECT_TRUE(pixelsOf(object).empty());
    EXPECT_TRUE(voxelsOf(object).empty());
}

TEST(kelDataPhysicalObjectTest, EachSetterStoresItsOwnField)
{
    kelDataPhysicalObject object;
    fill(object);
    expectFilled(object);
}

TEST(kelDataPhysicalObjectTest, TheTypeIsABytestring)
{
    kelDataPhysicalObject object;
    const std::string bytes("a\0b\xff", 4);
    object.setType(bytes);
    EXPECT_EQ(object.getType(), bytes);
}

TEST(kelDataPhysicalObjectTest, ThePositionsAreApartFromThe3DInformation)
{
    kelDataPhysicalObject object;
    object.setPosition(cv::Point3f(1, 2, 3));
    object.setHighestPosition(cv::Point3f(1, 2, 3));
    object.setLowestPosition(cv::Point3f(1, 2, 3));
    object.setCentroidPosition(cv::Point3f(1, 2, 3));
    EXPECT_EQ(object.getInformation3D().getPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getInformation3D().getHighestPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getInformation3D().getLowestPosition(), cv::Point3f(0, 0, 0));
    EXPECT_EQ(object.getInformation3D().getCentroidPosition(), cv::Point3f(0, 0, 0));

    Information3D information;
    information.setPosition(cv::Point3f(4, 5, 6));
    information.setHighestPosition(cv::Point3f(4, 5, 6));
    information.setLowestPosition(cv::Point3f(4, 5, 6));
    information.setCentroidPosition(cv::Point3f(4, 5, 6));
    object.setInformation3D(information);
    EXPECT_EQ(object.getPosition(), cv::Point3f(1, 2, 3));
    EXPECT_EQ(object.getHighestPosition(), cv::Point3f(1, 2, 3));
    EXPECT_EQ(object.getLowestPosition(), cv::Point3f(1, 2, 3));
    EXPECT_EQ(object.getCentroidPosition(), cv::Point3f(1, 2, 3));
}

TEST(kelDataPhysicalObjectTest, TheWholeSkeletonIsStored)
{
    kelDataPhysicalObject object;
    const SkeletonStructure skeleton = skeletonFrom(100);
    object.setSkeleton(skeleton);
    const SkeletonStructure stored = object.getSkeleton();
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(sameJoint(stored.joints[i], skeleton.joints[i])) << i;
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(stored.reserved[i], 115 + i);
}

TEST(kelDataPhysicalObjectTest, SettingPointsExchangesTheLists)
{
    kelDataPhysicalObject object;
    std::list<cv::Point> pixels{{1, 2}, {3, 4}, {5, 6}};
    const cv::Point *first = &pixels.front();
    object.setPixels(pixels);
    EXPECT_TRUE(pixels.empty());
    EXPECT_EQ(pixelsOf(object), (std::list<cv::Point>{{1, 2}, {3, 4}, {5, 6}}));

    std::list<cv::Point> next{{7, 8}};
    object.setPixels(next);
    EXPECT_EQ(next, (std::list<cv::Point>{{1, 2}, {3, 4}, {5, 6}}));
    EXPECT_EQ(&next.front(), first);
    EXPECT_EQ(pixelsOf(object), (std::list<cv::Point>{{7, 8}}));

    std::list<cv::Point3f> voxels{{1, 2, 3}};
    const cv::Point3f *voxel = &voxels.front();
    object.setVoxels(voxels);
    EXPECT_TRUE(voxels.empty());
    EXPECT_EQ(voxelsOf(object), (std::list<cv::Point3f>{{1, 2, 3}}));
    std::list<cv::Point3f> none;
    object.setVoxels(none);
    ASSERT_EQ(none, (std::list<cv::Point3f>{{1, 2, 3}}));
    EXPECT_EQ(&none.front(), voxel);
    EXPECT_TRUE(voxelsOf(object).empty());
}

TEST(kelDataPhysicalObjectTest, TheListsThatAreGivenOutAreCopies)
{
    kelDataPhysicalObject object;
    fill(object);
    std::list<cv::Point> pixels;
    object.getPixels(pixels);
    pixels.front() = cv::Point(50, 50);
    std::list<cv::Point3f> voxels;
    object.getVoxels(voxels);
    voxels.clear();
    expectFilled(object);
}

TEST(kelDataPhysicalObjectTest, TheBoxIsTheStoredOneItself)
{
    kelDataPhysicalObject object;
    const cv::Rect &stored = object.getBoundingBox2D();
    object.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    EXPECT_EQ(stored, cv::Rect(1, 2, 3, 4));
}

TEST(kelDataPhysicalObjectTest, ACopyCarriesEveryFieldAndTheWholeSkeletonInSilence)
{
    QObject parent;
    kelDataPhysicalObject object;
    object.setParent(&parent);
    fill(object);
    object.addSpecificProperty("k", 1);
    QVariantMap map{{"m", 2}};
    object.setMap(map);
    OutputCapture output;
    MessageCapture messages;
    const std::unique_ptr<kelDataPhysicalObject> copy(object.clone());
    expectFilled(*copy);
    const SkeletonStructure skeleton = copy->getSkeleton();
    const SkeletonStructure expected = skeletonFrom(100);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(sameJoint(skeleton.joints[i], expected.joints[i])) << i;
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(skeleton.reserved[i], expected.reserved[i]);
    EXPECT_EQ(copy->getSpecificProperties(), (QVariantMap{{"k", 1}}));
    EXPECT_TRUE(copy->getMap().isEmpty());
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(output.take(), "");
    EXPECT_TRUE(messages.lines().isEmpty());
    expectFilled(object);
}

TEST(kelDataPhysicalObjectTest, AssignmentTakesEveryFieldButOnlyTheHeadOfTheSkeleton)
{
    kelDataPhysicalObject from;
    fill(from);
    from.addSpecificProperty("k", 1);
    kelDataPhysicalObject to;
    to.setSkeleton(skeletonFrom(500));
    std::list<cv::Point> formerPixels{{8, 8}};
    to.setPixels(formerPixels);
    OutputCapture output;
    MessageCapture messages;
    EXPECT_EQ(&(to = from), &to);
    EXPECT_EQ(output.take(), copyTrace);
    EXPECT_TRUE(messages.lines().isEmpty());

    expectFilled(to);
    const SkeletonStructure skeleton = to.getSkeleton();
    const SkeletonStructure own = skeletonFrom(500);
    EXPECT_TRUE(sameJoint(skeleton.joints[1], own.joints[1]));
    EXPECT_TRUE(sameJoint(skeleton.joints[2], own.joints[2]));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(skeleton.reserved[i], own.reserved[i]);
    EXPECT_TRUE(to.getSpecificProperties().isEmpty());
    expectFilled(from);
}

TEST(kelDataPhysicalObjectTest, AssigningAnObjectToItselfLosesNothing)
{
    kelDataPhysicalObject object;
    fill(object);
    OutputCapture output;
    const kelDataPhysicalObject &same = object;
    object = same;
    EXPECT_EQ(output.take(), copyTrace);
    expectFilled(object);
}

TEST(kelDataPhysicalObjectTest, CopyFromAnotherKindWarnsTwiceAndKeepsTheObject)
{
    kelDataPhysicalObject object;
    fill(object);
    kelDataBlob blob;
    blob.setBoundingBox2D(cv::Rect(9, 9, 9, 9));
    OutputCapture output;
    MessageCapture messages;
    object.copy(blob);
    EXPECT_EQ(output.take(), copyTrace);
    EXPECT_EQ(messages.lines(), (QStringList{slicingWarning(), slicingWarning()}));
    expectFilled(object);
}

TEST(kelDataPhysicalObjectTest, CopyWritesItsTraceEvenWhenTheLoggerIsSilenced)
{
    kelDataPhysicalObject object;
    const LogLevel level(1000);
    OutputCapture output;
    MessageCapture messages;
    object.copy(kelDataBlob());
    object.copy(kelDataPhysicalObject());
    EXPECT_EQ(output.take(), std::string(copyTrace) + copyTrace);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataPhysicalObjectTest, TheTraceIsWrittenBeforeTheWarnings)
{
    static std::ostringstream written;
    static QStringList writtenBefore;
    written.str("");
    writtenBefore.clear();
    kelDataPhysicalObject object;
    std::streambuf *output = std::cout.rdbuf(written.rdbuf());
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {
            writtenBefore.append(QString::fromStdString(written.str()));
        });
    object.copy(kelDataBlob());
    qInstallMessageHandler(previous);
    std::cout.rdbuf(output);
    EXPECT_EQ(writtenBefore, (QStringList{copyTrace, copyTrace}));
}

TEST(kelDataPhysicalObjectTest, TheAccessorsHaveTheirTypes)
{
    using O = kelDataPhysicalObject;
    const auto is = [](auto operation, auto expected) {
        return std::is_same_v<decltype(operation), decltype(expected)>;
    };
    using Point = cv::Point3f (O::*)() const;
    using SetPoint = void (O::*)(const cv::Point3f &);
    EXPECT_TRUE(is(&O::getId, static_cast<int (O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::setId, static_cast<void (O::*)(int)>(nullptr)));
    EXPECT_TRUE(is(&O::getPosition, Point()));
    EXPECT_TRUE(is(&O::getCentroidPosition, Point()));
    EXPECT_TRUE(is(&O::getHighestPosition, Point()));
    EXPECT_TRUE(is(&O::getLowestPosition, Point()));
    EXPECT_TRUE(is(&O::setPosition, SetPoint()));
    EXPECT_TRUE(is(&O::setCentroidPosition, SetPoint()));
    EXPECT_TRUE(is(&O::setHighestPosition, SetPoint()));
    EXPECT_TRUE(is(&O::setLowestPosition, SetPoint()));
    EXPECT_TRUE(is(&O::getBoundingBox2D, static_cast<const cv::Rect &(O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::setBoundingBox2D, static_cast<void (O::*)(const cv::Rect &)>(nullptr)));
    EXPECT_TRUE(is(&O::getBoundingBox3D, static_cast<BoundingBox3D (O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::setBoundingBox3D, static_cast<void (O::*)(const BoundingBox3D &)>(nullptr)));
    EXPECT_TRUE(is(&O::getInformation3D, static_cast<Information3D (O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::setInformation3D, static_cast<void (O::*)(const Information3D &)>(nullptr)));
    EXPECT_TRUE(is(&O::getType, static_cast<std::string (O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::setType, static_cast<void (O::*)(const std::string &)>(nullptr)));
    EXPECT_TRUE(is(&O::getSkeleton, static_cast<SkeletonStructure (O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::setSkeleton, static_cast<void (O::*)(const SkeletonStructure &)>(nullptr)));
    EXPECT_TRUE(is(&O::getHead2dPosition, static_cast<cv::Point (O::*)() const>(nullptr)));
    EXPECT_TRUE(is(&O::getHead3dPosition, Point()));
    EXPECT_TRUE(is(&O::setPixels, static_cast<void (O::*)(std::list<cv::Point> &)>(nullptr)));
    EXPECT_TRUE(is(&O::setVoxels, static_cast<void (O::*)(std::list<cv::Point3f> &)>(nullptr)));
    EXPECT_TRUE(is(&O::getPixels, static_cast<void (O::*)(std::list<cv::Point> &) const>(nullptr)));
    EXPECT_TRUE(is(&O::getVoxels, static_cast<void (O::*)(std::list<cv::Point3f> &) const>(nullptr)));
}
