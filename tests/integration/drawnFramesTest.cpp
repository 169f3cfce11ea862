/// \file
/// Frames that the programs draw.

#include <kelCore/data/kelAbstractDataCalibration.h>

#include "integration/programs.h"
#include "support/Capture.h"

#include <opencv2/imgcodecs.hpp>

class drawnFramesTest : public Programs
{ };

TEST_F(drawnFramesTest, RenderedFramesShowThePictureAndTheBoxes)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "pictures", "--render-every", "10"})).code, 0);
    EXPECT_EQ(QDir("pictures").entryList(QDir::Files),
              (QStringList{"frame_000000.png", "frame_000010.png", "frame_000020.png", "frame_000030.png"}));
    ASSERT_EQ(kelreplay({"render", "run", "20", "replayed.png", "--video", "video.avi"}).code, 0);
    ASSERT_EQ(kelreplay({"render", "run", "20", "alone.png"}).code, 0);
    const cv::Mat live = cv::imread("pictures/frame_000020.png");
    const cv::Mat replayed = cv::imread("replayed.png");
    ASSERT_EQ(live.size(), cv::Size(160, 120));
    EXPECT_EQ(cv::norm(live, replayed, cv::NORM_INF), 0) << "replay shows what was recorded";

    const cv::Vec3b magenta(255, 0, 255);
    const QList<cv::Rect> found = boxes("run", 20);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(replayed.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2), magenta);
    const cv::Mat alone = cv::imread("alone.png");
    EXPECT_EQ(alone.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2), magenta);
    EXPECT_EQ(alone.at<cv::Vec3b>(0, 0), cv::Vec3b(0, 0, 0));
}

TEST_F(drawnFramesTest, MaskPaintsTheForegroundBlack)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "masked", "--mask"})).code, 0);
    const cv::Mat picture = cv::imread("masked/frame_000020.png");
    const cv::Rect square = squareAt(20);
    EXPECT_EQ(picture.at<cv::Vec3b>(square.y + 12, square.x + 12), cv::Vec3b(0, 0, 0));
}

TEST_F(drawnFramesTest, RenderMakesAVideo)
{
    QDir().mkdir("out");
    ASSERT_EQ(kelrecord(recording("run", {"--render", "out/run.avi"})).code, 0);
    cv::VideoCapture video("out/run.avi");
    ASSERT_TRUE(video.isOpened());
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_COUNT), frameCount);
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_WIDTH), 160);
}

TEST_F(drawnFramesTest, DrawnFramesShowTheGroundGridAndTheContext)
{
    const QString data = QStringLiteral(KEL_SOURCE_DIR "/examples/data/");
    const QStringList calibration{"--calibration", data + "vtest_camera.yml"};
    const QStringList context{"--context", data + "vtest_context.yml"};
    {
        cv::VideoWriter video("street.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 7, {768, 576});
        for (int i = 0; i < 2; ++i)
            video.write(cv::Mat(576, 768, CV_8UC3, cv::Scalar(90, 90, 90)));
    }
    ASSERT_EQ(
        kelrecord(QStringList{"street.avi", "--out", "run", "--render", "scene"} + calibration + context)
            .code,
        0);
    ASSERT_EQ(kelrecord(QStringList{"street.avi", "--out", "plain", "--render", "plain"}).code, 0);
    const cv::Mat scene = cv::imread("scene/frame_000000.png");
    const cv::Mat plain = cv::imread("plain/frame_000000.png");
    ASSERT_EQ(scene.size(), plain.size());
    // In the middle of a zone of the context, the picture is redder than before.
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read(data + "vtest_camera.yml"));
    cv::FileStorage file((data + "vtest_context.yml").toStdString(), cv::FileStorage::READ);
    const cv::FileNode zone = file["contextList"][0];
    cv::Point3d middle;
    for (const cv::FileNode point : zone["points"])
        middle += cv::Point3d(double(point["x"]), double(point["y"]), double(point["z"]))
            / double(zone["points"].size());
    const cv::Point2d at = camera.worldToImage(middle);
    const cv::Rect around(cvRound(at.x) - 12, cvRound(at.y) + 6, 24, 8); // beside the label
    EXPECT_GT(cv::mean(scene(around))[2], cv::mean(plain(around))[2] + 30);
    // The grid lies on the ground alone: nothing above the horizon, a line somewhere in each part below it.
    const auto changed = [&](const cv::Rect &part) {
        return cv::norm(scene(part), plain(part), cv::NORM_INF) > 0;
    };
    EXPECT_FALSE(changed({600, 0, 168, 40}));
    for (int x = 0; x < 768; x += 192)
        EXPECT_TRUE(changed({x, 400, 192, 140})) << x;

    ASSERT_EQ(kelreplay(QStringList{"render", "run", "0", "replayed.png", "--video", "street.avi"}
                        + calibration + context)
                  .code,
              0);
    EXPECT_EQ(cv::norm(cv::imread("replayed.png"), scene, cv::NORM_INF), 0);

    const Ended alone = kelreplay(QStringList{"render", "run", "0", "x.png"} + context);
    EXPECT_EQ(alone.code, 2) << alone;
    EXPECT_TRUE(alone.oneLine()) << alone;
    const Ended bad =
        kelreplay(QStringList{"render", "run", "0", "x.png", "--context", "street.avi"} + calibration);
    EXPECT_EQ(bad.code, 1) << bad;
    EXPECT_TRUE(bad.oneLine()) << bad;
}

TEST_F(drawnFramesTest, TheOperatorsViewIsTheSameWhileRecordingAndFromTheRecording)
{
    const QStringList view{"--view", "rgbd", "--keys", "I"};
    ASSERT_EQ(kelrecord(recording("run", QStringList{"--render", "live"} + view)).code, 0);
    for (const int frame : {0, 16, 20, 39}) {
        const QString name = QStringLiteral("%1.png").arg(frame);
        const Ended render = kelreplay(
            QStringList{"render", "run", QString::number(frame), name, "--video", "video.avi"} + view);
        ASSERT_EQ(render.code, 0) << render;
        const cv::Mat live =
            cv::imread(QStringLiteral("live/frame_%1.png").arg(frame, 6, 10, QLatin1Char('0')).toStdString());
        const cv::Mat replayed = cv::imread(name.toStdString());
        ASSERT_EQ(live.size(), cv::Size(640, 120 + 480));
        EXPECT_EQ(cv::norm(live, replayed, cv::NORM_INF), 0) << frame;
    }
}

TEST_F(drawnFramesTest, TheOperatorsViewShowsActorsAndTheTimeline)
{
    ASSERT_EQ(kelrecord(recording("run")).code, 0);
    const auto drawn = [](const QString &frame, const QString &keys) {
        const Ended render = kelreplay(
            {"render", "run", frame, "drawn.png", "--video", "video.avi", "--view", "rgbd", "--keys", keys});
        EXPECT_EQ(render.code, 0) << render;
        return render.code == 0 ? cv::imread("drawn.png") : cv::Mat::zeros(600, 640, CV_8UC3);
    };
    const auto count = [](const cv::Mat &picture, const cv::Scalar &color) {
        cv::Mat found;
        cv::inRange(picture, color, color, found);
        return cv::countNonZero(found);
    };
    const cv::Scalar magenta(255, 0, 255), cyan(255, 255, 0);
    const QList<cv::Rect> found = boxes("run", 25);
    ASSERT_EQ(found.size(), 1);

    const cv::Mat boxAndWay = drawn("25", "e"); // without the text; the first actor's colour is magenta
    EXPECT_EQ(boxAndWay.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2), cv::Vec3b(255, 0, 255));
    const cv::Mat way = drawn("25", "EB");
    EXPECT_GT(way.at<cv::Vec3b>(found[0].y, found[0].x + found[0].width / 2)[1], 60);
    const int past = boxes("run", 20).front().x + boxes("run", 20).front().width / 2;
    EXPECT_GT(count(way(cv::Rect(past - 2, found[0].y + found[0].height - 4, 4, 8)), magenta), 4);
    EXPECT_EQ(count(drawn("25", "EBT").rowRange(0, 120), magenta), 0);
    EXPECT_GT(count(drawn("25", "EBTI").rowRange(0, 120), magenta), 0) << "the label";

    const cv::Rect timeline(0, 120, 640, 480);
    EXPECT_EQ(count(drawn("10", "E")(timeline), cyan), 0) << "nothing has been in view yet";
    const int bar = count(drawn("20", "E")(timeline), cyan);
    EXPECT_GT(bar, 0);
    EXPECT_EQ(count(boxAndWay(timeline), cyan), bar + 5 * 18) << "half a second more";
}

TEST_F(drawnFramesTest, TheOperatorsViewIsDrawnIntoAVideo)
{
    ASSERT_EQ(kelrecord(recording("run", {"--render", "run.avi", "--view", "rgbd"})).code, 0);
    cv::VideoCapture video("run.avi");
    ASSERT_TRUE(video.isOpened());
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_COUNT), frameCount);
    EXPECT_EQ(video.get(cv::CAP_PROP_FRAME_HEIGHT), 600);
}

TEST_F(drawnFramesTest, TheOperatorsViewDrawsTheZonesByItself)
{
    const QString data = QStringLiteral(KEL_SOURCE_DIR "/examples/data/");
    const QStringList scene{"--calibration", data + "vtest_camera.yml", "--context",
                            data + "vtest_context.yml"};
    {
        cv::VideoWriter video("street.avi", cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 7, {768, 576});
        for (int i = 0; i < 2; ++i)
            video.write(cv::Mat(576, 768, CV_8UC3, cv::Scalar(90, 90, 90)));
    }
    ASSERT_EQ(kelrecord(QStringList{"street.avi", "--out", "run"} + scene).code, 0);
    const auto drawn = [&scene](const QString &keys) {
        const Ended render = kelreplay(QStringList{"render", "run", "0", "drawn.png", "--video", "street.avi",
                                                   "--view", "rgbd", "--keys", keys}
                                       + scene);
        EXPECT_EQ(render.code, 0) << render;
        return render.code == 0 ? cv::imread("drawn.png") : cv::Mat::zeros(1056, 768, CV_8UC3);
    };
    const cv::Mat without = drawn("E"), with = drawn("EZ");
    cv::Mat plain;
    cv::inRange(without.rowRange(0, 576), cv::Scalar(86, 86, 86), cv::Scalar(94, 94, 94), plain);
    EXPECT_EQ(cv::countNonZero(plain), 576 * 768) << "neither grid nor zones";
    kelAbstractDataCalibration camera;
    ASSERT_TRUE(camera.read(data + "vtest_camera.yml"));
    const cv::Point2d junction = camera.worldToImage({-8000, -7500, 0});
    const cv::Point pixel(cvRound(junction.x), cvRound(junction.y));
    EXPECT_GT(with.at<cv::Vec3b>(pixel)[2], without.at<cv::Vec3b>(pixel)[2] + 40);
}
