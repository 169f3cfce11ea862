#include "common/Follower.h"

#include "apps/scenes.h"

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataEvent.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

using testing::ElementsAre;

namespace {

/// The boxes of each frame, followed.
std::unique_ptr<Follower> followed(const std::vector<std::vector<cv::Rect>> &frames, const Scene &scene = {})
{
    auto follower = std::make_unique<Follower>(scene);
    for (const std::vector<cv::Rect> &boxes : frames)
        follower->add(stampOf(follower->frameCount()), boxes);
    return follower;
}

/// "id at x" for each actor of a frame.
std::vector<std::string> seen(const Follower &follower, int frame)
{
    std::vector<std::string> texts;
    for (const auto &actor : follower.actors(frame))
        texts.push_back(std::to_string(actor->getIdent()) + " at "
                        + std::to_string(actor->getBoundingBox2D().x));
    return texts;
}

/// "actor name since frame" for each event of a frame.
std::vector<std::string> running(const Follower &follower, int frame)
{
    std::vector<std::string> texts;
    for (const auto &event : follower.events(frame))
        texts.push_back(std::to_string(event->getInvolvedActorId()) + ' ' + event->getSEDName() + " since "
                        + std::to_string(event->getSEDBegin().getFrameNumber()));
    return texts;
}

QSharedPointer<const kelDataActor> onlyActor(const Follower &follower, int frame)
{
    const auto actors = follower.actors(frame);
    EXPECT_EQ(actors.size(), 1u);
    return actors.front();
}

cv::Rect box(int x) { return {x, 40, 20, 30}; }

/// A box on the ground of the level scene, 20 pixels wide and 30 high, whose foot is at (X, Y) mm.
cv::Rect boxAt(double X, double Y)
{
    return {cvRound(80 + 100 * X / Y) - 10, cvRound(60 + 100 * 2000 / Y) - 30, 20, 30};
}

} // namespace

TEST(FollowerTest, ABoxGoesOnWithTheActorThatItOverlaps)
{
    const auto follower = followed({{box(0), box(100)}, {box(96), box(4)}, {box(8), box(92), box(200)}});
    EXPECT_THAT(seen(*follower, 0), ElementsAre("1 at 0", "2 at 100"));
    EXPECT_THAT(seen(*follower, 1), ElementsAre("1 at 4", "2 at 96"));
    EXPECT_THAT(seen(*follower, 2), ElementsAre("1 at 8", "2 at 92", "3 at 200"));
}

TEST(FollowerTest, TheBestOverlapComesFirst)
{
    // Both boxes overlap actor 1; the second one more. The first is left with actor 2, which it overlaps
    // less.
    const auto follower = followed({{box(0), box(14)}, {box(6), box(1)}});
    EXPECT_THAT(seen(*follower, 1), ElementsAre("1 at 1", "2 at 6"));
    EXPECT_THAT(seen(*followed({{box(0)}, {box(6), box(1)}}), 1), ElementsAre("1 at 1", "2 at 6"))
        << "one actor, one box";
    EXPECT_THAT(seen(*followed({{box(0), box(4)}, {box(2)}}), 1), ElementsAre("1 at 2"))
        << "of equals, the older actor";
}

TEST(FollowerTest, ATouchIsNoOverlap)
{
    EXPECT_THAT(seen(*followed({{box(0)}, {box(20)}}), 1), ElementsAre("2 at 20"));
    EXPECT_THAT(seen(*followed({{box(0)}, {box(17)}}), 1), ElementsAre("2 at 17")) << "3 of 37 columns";
    EXPECT_THAT(seen(*followed({{box(0)}, {box(16)}}), 1), ElementsAre("1 at 16")) << "4 of 36 columns";
    EXPECT_THAT(seen(*followed({{{0, 0, 100, 9}}, {{81, 0, 100, 9}}}), 1), ElementsAre("1 at 81"))
        << "19 of 181 columns";
    EXPECT_THAT(seen(*followed({{box(0)}, {{5, 80, 20, 30}}}), 1), ElementsAre("2 at 5")) << "below";
}

TEST(FollowerTest, AnActorIsWaitedFor)
{
    const auto gap = [](int frames) {
        std::vector<std::vector<cv::Rect>> all{{box(0)}};
        all.resize(static_cast<size_t>(frames) + 1);
        all.push_back({box(2)});
        return all;
    };
    const auto waited = followed(gap(Follower::patience));
    EXPECT_THAT(seen(*waited, 3), ElementsAre());
    EXPECT_THAT(running(*waited, 3), ElementsAre());
    EXPECT_THAT(seen(*waited, Follower::patience + 1), ElementsAre("1 at 2"));
    EXPECT_THAT(running(*waited, Follower::patience + 1), ElementsAre("1 in view since 0"));

    const auto lost = followed(gap(Follower::patience + 1));
    EXPECT_THAT(seen(*lost, Follower::patience + 2), ElementsAre("2 at 2"));
    EXPECT_THAT(running(*lost, Follower::patience + 2), ElementsAre("2 in view since 7"));
}

TEST(FollowerTest, AnActorCarriesItsFrame)
{
    const auto follower = followed({{box(0)}, {box(4)}});
    const auto actor = onlyActor(*follower, 1);
    EXPECT_EQ(actor->getIdent(), 1u);
    EXPECT_EQ(actor->getBoundingBox2D(), box(4));
    EXPECT_EQ(actor->getSync(), stampOf(1));
    EXPECT_EQ(actor->getSpeed(), 0) << "nobody knows how far a pixel is";
    EXPECT_EQ(actor->getInformation3D().getHeight(), 0);
    const std::map<CSynchronizer, cv::Point3f> feet{{stampOf(0), {10, 70, 1}}, {stampOf(1), {14, 70, 1}}};
    EXPECT_EQ(actor->getTrajectory(), feet);
}

TEST(FollowerTest, TheTrajectoryIsTheLastOneOfTheFrameThatIsAskedFor)
{
    std::vector<std::vector<cv::Rect>> frames;
    for (int i = 0; i < 250; ++i)
        frames.push_back({box(i)});
    const auto follower = followed(frames);
    for (const int frame : {0, 50, 249}) {
        const auto trajectory = onlyActor(*follower, frame)->getTrajectory();
        EXPECT_EQ(trajectory.size(), std::min(frame + 1, Follower::longestTrajectory)) << frame;
        EXPECT_EQ(trajectory.rbegin()->first, stampOf(frame));
        EXPECT_EQ(trajectory.rbegin()->second, cv::Point3f(float(frame) + 10, 70, 1));
    }
}

TEST(FollowerTest, AFrameStaysWhatItWasWhenItWasTheNewest)
{
    std::vector<std::vector<cv::Rect>> frames;
    Follower playing{Scene()};
    std::vector<std::vector<std::string>> actors, events;
    cv::RNG random(5);
    for (int i = 0; i < 200; ++i) {
        frames.emplace_back();
        for (int k = random.uniform(0, 4); k > 0; --k)
            frames.back().push_back({random.uniform(0, 60), random.uniform(0, 20), 30, 40});
        playing.add(stampOf(i), frames.back());
        actors.push_back(seen(playing, i));
        events.push_back(running(playing, i));
    }
    const auto again = followed(frames);
    for (int i = 199; i >= 0; --i) {
        EXPECT_EQ(seen(*again, i), actors[size_t(i)]);
        EXPECT_EQ(running(*again, i), events[size_t(i)]);
    }
    EXPECT_THAT(actors.back(), testing::Not(testing::IsEmpty()));
}

TEST(FollowerTest, BeingInViewIsAnEvent)
{
    const auto follower = followed({{}, {box(0)}, {}, {box(2)}, {box(4)}});
    EXPECT_TRUE(follower->events(0).empty());
    EXPECT_TRUE(follower->events(2).empty()) << "not seen";
    const auto events = follower->events(4);
    ASSERT_EQ(events.size(), 1u);
    const kelDataEvent &event = *events.front();
    EXPECT_EQ(event.getSEDName(), "in view");
    EXPECT_EQ(event.getSEDAlarmLevel(), "NOTURGENT");
    EXPECT_EQ(event.getInvolvedActorId(), 1);
    EXPECT_EQ(event.getSEDBegin(), stampOf(1));
    EXPECT_EQ(event.getSEDEnd(), stampOf(4));
    EXPECT_DOUBLE_EQ(event.getSEDConfidence(), 3.0 / 4) << "seen in three of four frames";
}

TEST(FollowerTest, BeingInAZoneIsAnEvent)
{
    Scene scene = levelScene();
    scene.elements = {zone("left", {{-2000, 4000, 0}, {0, 4000, 0}, {0, 6000, 0}, {-2000, 6000, 0}}),
                      zone("back", {{-2000, 5500, 0}, {2000, 5500, 0}, {2000, 8000, 0}, {-2000, 8000, 0}})};
    ContextElement wall = zone("wall", scene.elements.front().polygonVertices);
    wall.semantic = "wall";
    scene.elements.push_back(wall);
    const auto follower =
        followed({{boxAt(500, 5000)}, {boxAt(-300, 5000)}, {boxAt(-300, 5700)}, {boxAt(400, 5800)}}, scene);
    EXPECT_THAT(running(*follower, 0), ElementsAre());
    EXPECT_THAT(running(*follower, 1), ElementsAre("1 in left since 1"));
    EXPECT_THAT(running(*follower, 2), ElementsAre("1 in left since 1", "1 in back since 2"));
    EXPECT_THAT(running(*follower, 3), ElementsAre("1 in back since 2"));
    EXPECT_EQ(follower->events(3).front()->getSEDAlarmLevel(), "URGENT");
}

TEST(FollowerTest, AZoneThatIsEnteredAgainIsANewEvent)
{
    Scene scene = levelScene();
    scene.elements = {zone("left", {{-2000, 4000, 0}, {0, 4000, 0}, {0, 6000, 0}, {-2000, 6000, 0}})};
    std::vector<std::vector<cv::Rect>> frames{{boxAt(-300, 5000)}};
    for (int i = 0; i < Follower::patience; ++i)
        frames.push_back({boxAt(100, 5000)});
    frames.push_back({boxAt(-300, 5000)}); // soon enough
    for (int i = 0; i <= Follower::patience; ++i)
        frames.push_back({boxAt(100, 5000)});
    frames.push_back({boxAt(-300, 5000)});
    const auto follower = followed(frames, scene);
    EXPECT_THAT(running(*follower, 6), ElementsAre("1 in left since 0"));
    EXPECT_DOUBLE_EQ(follower->events(6).front()->getSEDConfidence(), 2.0 / 7);
    EXPECT_THAT(running(*follower, 7), ElementsAre());
    EXPECT_THAT(running(*follower, 13), ElementsAre("1 in left since 13"));
}

TEST(FollowerTest, ZonesOfOneNameAreOneEvent)
{
    Scene scene = levelScene();
    const std::list<cv::Point3d> everywhere{{-9000, 1, 0}, {9000, 1, 0}, {9000, 90000, 0}, {-9000, 90000, 0}};
    scene.elements = {zone("road", everywhere), zone("", everywhere), zone("road", everywhere),
                      zone("line", {{0, 1, 0}, {0, 90000, 0}})};
    EXPECT_THAT(running(*followed({{boxAt(0, 5000)}}, scene), 0),
                ElementsAre("1 in road since 0", "1 in zone since 0"));
}

TEST(FollowerTest, FarFromTheOriginZonesAreStillExact)
{
    const double far = 4e6; // as in a national grid
    Scene scene = levelScene();
    auto camera = std::make_shared<kelAbstractDataCalibration>(*scene.camera);
    const cv::Mat shift = (cv::Mat_<double>(4, 4) << 1, 0, 0, -far, 0, 1, 0, -far, 0, 0, 1, 0, 0, 0, 0, 1);
    camera->setExtrinsicMatrix(camera->getExtrinsicMatrix() * shift);
    scene.camera = camera;
    const auto corner = [far](double x, double y) { return cv::Point3d(far + x, far + y, 0); };
    scene.elements = {
        zone("strip", {corner(-0.1, 4000), corner(0.1, 4000), corner(0.1, 6000), corner(-0.1, 6000)})};
    EXPECT_THAT(running(*followed({{boxAt(0, 5000)}}, scene), 0), ElementsAre("1 in strip since 0"));
    scene.elements = {
        zone("strip", {corner(0.1, 4000), corner(0.3, 4000), corner(0.3, 6000), corner(0.1, 6000)})};
    EXPECT_THAT(running(*followed({{boxAt(0, 5000)}}, scene), 0), ElementsAre());
}

TEST(FollowerTest, ACalibrationTellsHeightSpeedAndTrajectory)
{
    std::vector<std::vector<cv::Rect>> frames;
    for (int i = 0; i < 30; ++i)
        frames.push_back({boxAt(-1000 + 100 * i, 5000)}); // 1 m/s: 100 mm are 2 pixels
    const auto follower = followed(frames, levelScene());
    const auto actor = onlyActor(*follower, 20);
    EXPECT_NEAR(actor->getInformation3D().getHeight(), 1500, 0.01);
    EXPECT_NEAR(actor->getSpeed(), 1, 1e-6);
    const auto &trajectory = actor->getTrajectory();
    ASSERT_EQ(trajectory.size(), 21u);
    EXPECT_NEAR(trajectory.rbegin()->second.x, 1000, 0.01);
    EXPECT_NEAR(trajectory.rbegin()->second.y, 2000, 0.01) << "down to the ground";
    EXPECT_NEAR(trajectory.rbegin()->second.z, 5000, 0.01);
    EXPECT_EQ(onlyActor(*follower, 0)->getSpeed(), 0) << "nothing to compare with";
}

TEST(FollowerTest, SpeedIsThatOfTheLastSecond)
{
    std::vector<std::vector<cv::Rect>> frames;
    for (int i = 0; i < 40; ++i)
        frames.push_back({boxAt(std::min(i, 20) * 100, 5000)}); // walks for two seconds, then stands
    const auto follower = followed(frames, levelScene());
    EXPECT_NEAR(onlyActor(*follower, 20)->getSpeed(), 1, 1e-6);
    EXPECT_NEAR(onlyActor(*follower, 25)->getSpeed(), 0.5, 1e-6);
    EXPECT_EQ(onlyActor(*follower, 30)->getSpeed(), 0);
}

TEST(FollowerTest, AboveTheHorizonThereIsNoGround)
{
    Scene scene = levelScene();
    scene.elements = {zone("road", {{-9e6, 1, 0}, {9e6, 1, 0}, {9e6, 9e6, 0}, {-9e6, 9e6, 0}})};
    const auto follower = followed({{{70, 10, 20, 30}}}, scene);
    const auto actor = onlyActor(*follower, 0);
    EXPECT_TRUE(actor->getTrajectory().empty());
    EXPECT_EQ(actor->getSync(), stampOf(0));
    EXPECT_EQ(actor->getInformation3D().getHeight(), 0);
    EXPECT_TRUE(follower->events(0).empty());

    const cv::Rect whole(70, 20, 20, 80), head(70, 20, 20, 40);
    const auto hidden = followed({{whole}, {head}, {whole}}, scene);
    EXPECT_THAT(seen(*hidden, 2), ElementsAre("1 at 70"));
    EXPECT_EQ(onlyActor(*hidden, 2)->getTrajectory().size(), 2u) << "the frame between has no point";
}

TEST(FollowerTest, PixelsAreTheForegroundOfTheBox)
{
    const auto follower = followed({{cv::Rect(2, 3, 4, 5), cv::Rect(-5, -5, 8, 8), cv::Rect(50, 50, 4, 4)}});
    cv::Mat mask(20, 20, CV_8U, cv::Scalar(0));
    mask.at<uchar>(3, 2) = 255;
    mask.at<uchar>(7, 5) = 255;
    mask.at<uchar>(8, 5) = 255; // outside of the box
    mask.at<uchar>(1, 0) = 255;
    std::vector<std::list<cv::Point>> pixels;
    for (const auto &actor : follower->actors(0, mask))
        actor->getPixels(pixels.emplace_back());
    EXPECT_THAT(pixels,
                ElementsAre(ElementsAre(cv::Point(2, 3), cv::Point(5, 7)), ElementsAre(cv::Point(0, 1)),
                            ElementsAre()));
    onlyActor(*followed({{cv::Rect(2, 3, 4, 5)}}), 0)->getPixels(pixels[0]);
    EXPECT_TRUE(pixels[0].empty()) << "no mask, no pixels";
}

TEST(FollowerTest, FramesWithoutATimeAreFollowedAllTheSame)
{
    Follower follower(levelScene());
    for (int i = 0; i < 300; ++i)
        follower.add(CSynchronizer(), {boxAt(i, 5000)});
    const auto actor = onlyActor(follower, 299);
    EXPECT_EQ(actor->getIdent(), 1u);
    EXPECT_EQ(actor->getSpeed(), 0);
    ASSERT_EQ(actor->getTrajectory().size(), 1u) << "there is one time";
    EXPECT_NEAR(actor->getTrajectory().begin()->second.x, 300, 10) << "of which the newest point counts";
    ASSERT_EQ(follower.events(299).size(), 1u);
    EXPECT_EQ(follower.events(299).front()->getSEDConfidence(), 1);
}

TEST(FollowerTest, BoxesOfAnySizeAreHarmless)
{
    const cv::Rect huge(INT_MIN, INT_MAX, INT_MAX, INT_MAX);
    const auto follower =
        followed({{huge, {0, 0, 0, 0}, {5, 5, -3, -4}}, {huge, {0, 0, 0, 0}, {5, 5, -3, -4}}});
    EXPECT_THAT(follower->actors(1), testing::SizeIs(3));
    EXPECT_THAT(seen(*follower, 1), testing::Contains("1 at " + std::to_string(INT_MIN)));
}
