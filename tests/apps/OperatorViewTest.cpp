#include "common/OperatorView.h"

#include "apps/scenes.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QLayout>
#include <QScrollBar>

#include <limits>

namespace {

const cv::Vec4b magenta(255, 0, 255, 255); // actor 1
const cv::Vec4b cyan(255, 255, 0, 255); // a bar of the timeline
const cv::Vec4b white(255, 255, 255, 255);
const cv::Vec4b black(0, 0, 0, 255);
const cv::Vec4b grey(90, 90, 90, 255);
constexpr int pictureHeight = 120;
constexpr int timelineHeight = 480;

/// A grey frame of 160 x 120 pixels.
Shot greyShot()
{
    Shot shot;
    shot.picture.reset(new kelDataImage);
    shot.picture->setImage(cv::Mat(pictureHeight, 160, CV_8UC3, cv::Scalar(90, 90, 90)));
    return shot;
}

/// Goes on with a frame of these boxes, and shows it.
void show(OperatorView &view, const std::vector<cv::Rect> &boxes)
{
    view.showShot(view.add(stampOf(view.frameCount()), boxes), greyShot());
}

cv::Mat upper(OperatorView &view) { return view.picture().rowRange(0, pictureHeight); }
cv::Mat timeline(OperatorView &view)
{
    const cv::Mat picture = view.picture();
    return picture.rowRange(pictureHeight, picture.rows);
}

/// Pixels of that colour.
int count(const cv::Mat &picture, const cv::Vec4b &color)
{
    cv::Mat found;
    cv::inRange(picture, color, color, found);
    return cv::countNonZero(found);
}

bool same(const cv::Mat &a, const cv::Mat &b)
{
    return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
}

const cv::Rect square(60, 70, 40, 40);

} // namespace

TEST(OperatorViewTest, ThePictureIsTheFrameOverTheTimeline)
{
    OperatorView view(Scene(), "E"); // without the text over the frame
    show(view, {square});
    show(view, {square});
    const cv::Mat picture = view.picture();
    ASSERT_EQ(picture.size(), cv::Size(640, pictureHeight + timelineHeight));
    ASSERT_EQ(picture.type(), CV_8UC4);
    EXPECT_EQ(picture.at<cv::Vec4b>(0, 0), grey);
    EXPECT_EQ(picture.at<cv::Vec4b>(70, 80), magenta);
    EXPECT_EQ(picture.at<cv::Vec4b>(90, 80), grey) << "inside of the box";
    EXPECT_EQ(picture.at<cv::Vec4b>(5, 300), black) << "beside the frame";
    EXPECT_EQ(picture.at<cv::Vec4b>(pictureHeight + 300, 300), white);
    EXPECT_EQ(picture.at<cv::Vec4b>(pictureHeight + 45, 635), cyan) << "the first row's bar ends now";
}

TEST(OperatorViewTest, EventsAreListedOverTheFrame)
{
    OperatorView view(Scene(), "B");
    const cv::Vec4b red(0, 0, 255, 255);
    show(view, {});
    const int heading = count(upper(view), red);
    show(view, {square});
    EXPECT_GT(count(upper(view), red), heading + 100);
    show(view, {});
    EXPECT_EQ(count(upper(view), red), heading);
}

TEST(OperatorViewTest, TheTrajectoryIsDrawnInPixels)
{
    OperatorView view(Scene(), "EB"); // lines alone
    for (int i = 0; i < 10; ++i)
        show(view, {square + cv::Point(5 * i, 0)});
    EXPECT_EQ(upper(view).at<cv::Vec4b>(110, 100), magenta);
    EXPECT_EQ(upper(view).at<cv::Vec4b>(110, 70), grey);
    press(view, Qt::Key_T);
    EXPECT_EQ(count(upper(view), grey), 160 * pictureHeight);
}

TEST(OperatorViewTest, KeysTakeEffectAtOnceAndKeysBeforeTheFirstFrameToo)
{
    OperatorView plain((Scene()));
    show(plain, {square});
    const cv::Mat before = upper(plain);
    for (const int key : {Qt::Key_E, Qt::Key_B, Qt::Key_I}) {
        press(plain, key);
        EXPECT_FALSE(same(upper(plain), before)) << key;
        OperatorView pressed{Scene(), QChar(key)};
        show(pressed, {square});
        EXPECT_TRUE(same(upper(pressed), upper(plain))) << key;
        press(plain, key);
        EXPECT_TRUE(same(upper(plain), before)) << key;
    }
}

TEST(OperatorViewTest, PlusAndMinusChangeTheLengthOfTrajectories)
{
    OperatorView view(Scene(), "EB");
    for (int i = 0; i < 100; ++i)
        show(view, {{i, 60, 30, 40}});
    const int normal = count(upper(view), magenta);
    press(view, Qt::Key_Plus);
    EXPECT_EQ(count(upper(view), magenta), normal + 2 * 5);
    OperatorView pressed(Scene(), "EB+");
    for (int i = 0; i < 100; ++i)
        show(pressed, {{i, 60, 30, 40}});
    EXPECT_TRUE(same(upper(pressed), upper(view)));
    press(view, Qt::Key_Minus);
    press(view, Qt::Key_Minus);
    EXPECT_EQ(count(upper(view), magenta), normal - 2 * 5);
}

TEST(OperatorViewTest, EscapeTurnsTheFrameOffAndOn)
{
    OperatorView view((Scene()));
    show(view, {square});
    const cv::Mat before = view.picture();
    press(view, Qt::Key_Escape);
    EXPECT_EQ(count(upper(view), black), 640 * pictureHeight);
    EXPECT_TRUE(same(timeline(view), before.rowRange(pictureHeight, before.rows)));
    press(view, Qt::Key_Escape);
    EXPECT_TRUE(same(view.picture(), before));
}

TEST(OperatorViewTest, TheDepthKeyKeepsTheFrame)
{
    OperatorView view(Scene(), "D");
    show(view, {square});
    EXPECT_EQ(upper(view).at<cv::Vec4b>(90, 80), grey);
    press(view, Qt::Key_D);
    EXPECT_EQ(upper(view).at<cv::Vec4b>(90, 80), grey);
}

TEST(OperatorViewTest, TheForegroundIsShownWhereItIsKnown)
{
    OperatorView view(Scene(), "EA");
    Shot shot = greyShot();
    shot.foreground.reset(new kelDataImage);
    cv::Mat mask(pictureHeight, 160, CV_8U, cv::Scalar(0));
    mask(cv::Rect(70, 80, 10, 10)) = 255;
    shot.foreground->setImage(mask);
    view.showShot(view.add(stampOf(0), {square}), shot);
    EXPECT_EQ(upper(view).at<cv::Vec4b>(85, 75), magenta);
    EXPECT_EQ(upper(view).at<cv::Vec4b>(85, 85), grey);
}

TEST(OperatorViewTest, ZonesAreDrawnWhereTheCalibrationProjectsThem)
{
    Scene scene = levelScene();
    scene.elements = {zone("road", {{-1000, 4000, 0}, {1000, 4000, 0}, {1000, 8000, 0}, {-1000, 8000, 0}})};
    OperatorView view(scene, "EZ");
    show(view, {});
    const cv::Point2d middle = scene.camera->worldToImage({0, 6000, 0});
    const auto pixel = [&view](const cv::Point2d &p) {
        return upper(view).at<cv::Vec4b>(cvRound(p.y), cvRound(p.x));
    };
    EXPECT_GT(pixel(middle)[2], pixel(middle)[0] + 30) << "reddish";
    EXPECT_EQ(pixel(scene.camera->worldToImage({1500, 6000, 0})), grey);
    press(view, Qt::Key_Z);
    EXPECT_EQ(pixel(middle), grey);
    press(view, Qt::Key_G);
    EXPECT_GT(pixel(middle)[1], pixel(middle)[0] + 30) << "greenish: the ground";
}

TEST(OperatorViewTest, NoGroundAndNoZoneMakesTrouble)
{
    QElapsedTimer clock;
    clock.start();
    const double none = std::nan(""), infinite = std::numeric_limits<double>::infinity();
    for (Scene scene : {Scene(), levelScene(), sceneFromAbove()}) {
        scene.elements = {zone("behind", {{-1000, -4000, 0}, {1000, 4000, 0}, {1000, 0, 2000}, {9, -5, 0}}),
                          zone("strange", {{none, 0, 0}, {infinite, 1, 0}, {-infinite, 1e300, 0}, {0, 0, 0}}),
                          zone("empty", {})};
        OperatorView view(scene, "GZIPLFA");
        show(view, {square, {10, 10, 20, 20}});
        show(view, {square, {10, 10, 20, 20}});
        EXPECT_EQ(view.picture().size(), cv::Size(640, pictureHeight + timelineHeight));
    }
    EXPECT_LT(clock.elapsed(), 10000);

    OperatorView unknown(Scene(), "EG");
    show(unknown, {});
    EXPECT_EQ(count(upper(unknown), grey), 160 * pictureHeight) << "the ground is not known";
}

TEST(OperatorViewTest, AJumpShowsWhatPlayingShows)
{
    OperatorView playing(Scene(), "I");
    OperatorView jumping(Scene(), "I");
    const int frames = 900; // 90 seconds
    std::vector<cv::Mat> pictures;
    for (int i = 0; i < frames; ++i) {
        std::vector<cv::Rect> boxes;
        for (int k = 0; k < 6; ++k) // for 3 seconds each, every 15 seconds
            if (i / 30 % 5 == k % 5)
                boxes.push_back({25 * k, 60 + i % 30, 20, 30});
        jumping.add(stampOf(i), boxes);
        show(playing, boxes);
        if (i % 50 == 49)
            pictures.push_back(playing.picture());
    }
    for (const int k : {17, 2, 3, 16, 0, 9}) {
        jumping.showShot(50 * k + 49, greyShot());
        EXPECT_TRUE(same(jumping.picture(), pictures[size_t(k)])) << "frame " << 50 * k + 49;
    }
    jumping.showShot(499, greyShot());
    jumping.showShot(499, greyShot());
    EXPECT_TRUE(same(jumping.picture(), pictures[9]));
}

TEST(OperatorViewTest, TheNewestRowsOfTheTimelineAreDrawn)
{
    OperatorView view((Scene()));
    int x = 0;
    for (int i = 0; i < 60; ++i)
        show(view, {{x += 31, 60, 30, 30}}); // a new actor each time
    const cv::Mat drawn = timeline(view);
    EXPECT_EQ(drawn.rows, timelineHeight);
    EXPECT_EQ(drawn.at<cv::Vec4b>(timelineHeight - 13, 636), cyan) << "the last row's bar ends now";
    EXPECT_EQ(count(drawn.rowRange(29, 31), black), 2 * 640) << "the header's line stays";
}

TEST(OperatorViewTest, TheWindowFollowsTheNewestRowsUntilTheUserScrolls)
{
    OperatorView view((Scene()));
    view.show();
    int x = 0;
    const auto newActor = [&] { show(view, {{x += 31, 60, 30, 30}}); };
    newActor();
    EXPECT_EQ(view.size(), view.sizeHint());
    const QWidget *frame = view.layout()->itemAt(0)->widget();
    EXPECT_EQ(frame->height(), frame->sizeHint().height()) << "all of the frame is seen";
    view.resize(900, 400);
    newActor();
    EXPECT_EQ(frame->width(), 900);
    EXPECT_EQ(frame->height(), frame->sizeHint().height());
    const auto *area = view.findChild<QScrollArea *>();
    QApplication::processEvents();
    EXPECT_EQ(area->widget()->size(), area->viewport()->size());

    for (int i = 0; i < 60; ++i)
        newActor();
    QApplication::processEvents();
    QScrollBar *bar = area->verticalScrollBar();
    EXPECT_GT(bar->maximum(), 900);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(700);
    newActor();
    EXPECT_EQ(bar->value(), 700);
    view.showShot(58, greyShot()); // back: a new timeline
    EXPECT_EQ(bar->value(), 700);
    EXPECT_EQ(view.picture().rows, pictureHeight + timelineHeight);
}

TEST(OperatorViewTest, NothingInTheViewTakesTheKeysAway)
{
    OperatorView view((Scene()));
    EXPECT_EQ(view.focusPolicy(), Qt::StrongFocus);
    show(view, {square});
    view.showShot(0, greyShot()); // a new timeline
    for (const QWidget *part : view.findChildren<QWidget *>())
        // A viewport asks its area.
        EXPECT_TRUE(part->focusProxy() || part->focusPolicy() == Qt::NoFocus)
            << part->metaObject()->className();
}

TEST(OperatorViewTest, FramesWithoutATimeAreShown)
{
    OperatorView view((Scene()));
    for (int i = 0; i < 20; ++i)
        view.add(CSynchronizer(), {square});
    for (const int frame : {0, 1, 19, 3}) {
        view.showShot(frame, greyShot());
        EXPECT_GT(count(timeline(view), cyan), 0) << frame;
    }
}
