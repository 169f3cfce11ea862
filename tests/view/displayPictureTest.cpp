// What the display pictures of both views hold, whatever the frame and the scene.

#include "support/RgbdView.h"
#include "support/ViewPicture.h"

#include <kelCore/view/kelView.h>

#include <QGraphicsBlurEffect>
#include <QKeySequence>

#include <limits>
#include <memory>

namespace {

/// A view that shows nothing but what is set.
template <class View> std::unique_ptr<View> bareView()
{
    auto view = std::make_unique<View>();
    if constexpr (std::is_same_v<View, kelViewRGBD>)
        for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys())
            if (key.state && key.code != Qt::Key_Escape)
                view->switches().*key.state = false;
    return view;
}

template <class View> class displayPictureTest : public testing::Test
{
protected:
    QGraphicsScene &scene() { return *dynamic_cast<QGraphicsView *>(view->widget())->scene(); }

    cv::Mat shown(const cv::Mat &pixels)
    {
        view->setAcquisitionImage(image(pixels));
        view->updateDisplay();
        return view->getDisplay()->getImage();
    }

    /// The picture for a row of pixels of that type; each of its elements has the same value in all channels.
    template <class Value> std::vector<int> shownGrey(int type, const std::vector<Value> &values)
    {
        cv::Mat pixels(1, static_cast<int>(values.size()), type);
        for (int x = 0; x < pixels.cols; ++x)
            for (int c = 0; c < pixels.channels(); ++c)
                pixels.ptr<Value>()[x * pixels.channels() + c] = values[size_t(x)];
        std::vector<int> result;
        for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(shown(pixels))) {
            EXPECT_EQ(bgra, cv::Vec4b(bgra[0], bgra[0], bgra[0], 255));
            result.push_back(bgra[0]);
        }
        return result;
    }

    std::unique_ptr<View> view = bareView<View>();
};

using Views = testing::Types<kelView, kelViewRGBD>;
using Ints = std::vector<int>;

} // namespace

TYPED_TEST_SUITE(displayPictureTest, Views);

// Frames.

TYPED_TEST(displayPictureTest, SixteenBitsAreScaledSoThatTheGreatestIsWhite)
{
    for (const int type : {CV_16UC1, CV_16UC3, CV_16UC4})
        EXPECT_EQ(
            this->template shownGrey<ushort>(type, {0, 128, 129, 257, 1000, 32896, 65406, 65407, 65535}),
            (Ints{0, 0, 1, 1, 4, 128, 254, 255, 255}));
}

TYPED_TEST(displayPictureTest, EightBitsAreShownAsTheyAre)
{
    for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4})
        EXPECT_EQ(this->template shownGrey<uchar>(type, {0, 1, 127, 128, 254, 255}),
                  (Ints{0, 1, 127, 128, 254, 255}));
}

TYPED_TEST(displayPictureTest, SixteenBitsThatRepeatAByteAreThatByte)
{
    std::vector<ushort> values;
    Ints bytes;
    for (int byte = 0; byte < 256; ++byte) {
        values.push_back(static_cast<ushort>(257 * byte));
        bytes.push_back(byte);
    }
    EXPECT_EQ(this->shownGrey(CV_16UC3, values), bytes);
}

TYPED_TEST(displayPictureTest, FloatsAreShownFromZeroToOne)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    const float most = std::numeric_limits<float>::max(), least = std::numeric_limits<float>::denorm_min();
    for (const int type : {CV_32FC1, CV_32FC3, CV_32FC4}) {
        EXPECT_EQ(
            this->template shownGrey<float>(type, {0, 0.0019f, 0.002f, 0.25f, 0.5f, 0.998f, 0.9981f, 1}),
            (Ints{0, 0, 1, 64, 128, 254, 255, 255}));
        EXPECT_EQ(this->template shownGrey<float>(type, {-0.0f, -1, -most, -infinity, none, -none, least}),
                  (Ints{0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(this->template shownGrey<float>(type, {1.001f, 255, 1e9f, most, infinity}),
                  (Ints{255, 255, 255, 255, 255}));
    }
}

TYPED_TEST(displayPictureTest, FramesOfAnyDepthAreBlueGreenRed)
{
    const cv::Vec4b wanted(10, 20, 30, 255);
    const cv::Scalar bytes(10, 20, 30, 77);
    for (const auto &[type, scale] : std::vector<std::pair<int, double>>{{CV_8UC3, 1},
                                                                         {CV_8UC4, 1},
                                                                         {CV_16UC3, 257},
                                                                         {CV_16UC4, 257},
                                                                         {CV_32FC3, 1. / 255},
                                                                         {CV_32FC4, 1. / 255}}) {
        const cv::Mat part = cv::Mat(9, 9, type, bytes * scale)(cv::Rect(2, 2, 5, 3));
        const cv::Mat picture = this->shown(part);
        ASSERT_EQ(picture.size(), cv::Size(5, 3)) << type;
        for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
            EXPECT_EQ(bgra, wanted) << type;
    }
}

TYPED_TEST(displayPictureTest, TheCallersFrameStaysAsItIs)
{
    const cv::Mat shorts(4, 4, CV_16UC3, cv::Scalar(1, 2, 60000)),
        floats(4, 4, CV_32FC3, cv::Scalar(-1, 2, 0.5));
    for (const cv::Mat &pixels : {shorts, floats}) {
        const cv::Mat before = pixels.clone();
        this->shown(pixels);
        EXPECT_EQ(cv::norm(pixels, before, cv::NORM_INF), 0);
    }
}

TYPED_TEST(displayPictureTest, WhatIsNoFrameThrows)
{
    for (const int type : {CV_8UC2, CV_8UC(5), CV_16UC2, CV_16UC(5), CV_32FC2, CV_32FC(5), CV_8SC1, CV_8SC3,
                           CV_16SC3, CV_32SC3, CV_64FC1, CV_64FC3, CV_16FC3}) {
        this->view = bareView<TypeParam>();
        const cv::Mat before = this->shown(cv::Mat(4, 4, CV_8UC3, cv::Scalar(1, 2, 3))).clone();
        EXPECT_THROW(this->shown(cv::Mat(4, 4, type, cv::Scalar::all(1))), cv::Exception) << type;
        EXPECT_EQ(cv::norm(this->view->getDisplay()->getImage(), before, cv::NORM_INF), 0);
        EXPECT_EQ(this->shown(cv::Mat(6, 6, CV_8UC3, cv::Scalar(4, 5, 6))).template at<cv::Vec4b>(5, 5),
                  cv::Vec4b(4, 5, 6, 255));
    }
}

// Every pixel.

namespace {

/// Renders twice, over bytes that are none of the view's, and expects the scene on black.
template <class View> void expectSceneOnBlack(View &view, QGraphicsScene &scene, const char *what)
{
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay()->getImage().empty()) << what;
    cv::Mat(view.getDisplay()->getImage()).setTo(cv::Scalar::all(0x5a));
    view.updateDisplay();
    const cv::Mat picture = view.getDisplay()->getImage();
    EXPECT_EQ(differentBytes(picture, rendered(scene)), 0) << what;
    int transparent = 0;
    for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
        transparent += bgra[3] != 255;
    EXPECT_EQ(transparent, 0) << what;
}

} // namespace

TEST(kelViewPixelsTest, EveryPixelIsTheScenesOrBlack)
{
    using Change = void (*)(QGraphicsPixmapItem & frame, QGraphicsScene & scene);
    const std::pair<const char *, Change> changes[] = {
        {"as it is", [](auto &, auto &) {}},
        {"hidden", [](auto &item, auto &) { item.hide(); }},
        {"moved", [](auto &item, auto &) { item.setPos(3, 2); }},
        {"moved by half a pixel", [](auto &item, auto &) { item.setPos(-0.5, 0); }},
        {"turned", [](auto &item, auto &) { item.setRotation(30); }},
        {"sheared", [](auto &item, auto &) { item.setTransform(QTransform().shear(1, 0)); }},
        {"smaller", [](auto &item, auto &) { item.setScale(0.5); }},
        {"half transparent", [](auto &item, auto &) { item.setOpacity(0.5); }},
        {"blurred", [](auto &item, auto &) { item.setGraphicsEffect(new QGraphicsBlurEffect); }},
        {"child of a hidden item",
         [](auto &item, auto &scene) {
             auto *parent = scene.addRect(0, 0, 1, 1);
             item.setParentItem(parent);
             parent->hide();
         }},
        {"transparent picture",
         [](auto &item, auto &) {
             QPixmap clear(40, 30);
             clear.fill(Qt::transparent);
             item.setPixmap(clear);
         }},
        {"another scene's",
         [](auto &item, auto &) {
             static QGraphicsScene other;
             other.addItem(&item);
         }},
        {"deleted", [](auto &item, auto &) { delete &item; }},
        {"in a larger scene", [](auto &, auto &scene) { scene.setSceneRect(-5, -5, 60, 50); }},
        {"in a part of the scene", [](auto &, auto &scene) { scene.setSceneRect(5, 6, 20, 10); }},
        {"in a scene of broken pixels", [](auto &, auto &scene) { scene.setSceneRect(0, 0, 30.4, 20.6); }},
        {"in a scene between pixels", [](auto &, auto &scene) { scene.setSceneRect(0.5, 0.5, 20, 20); }},
    };
    for (const bool masked : {false, true}) {
        for (const auto &[what, change] : changes) {
            kelView view;
            QGraphicsScene &scene = *dynamic_cast<QGraphicsView *>(view.widget())->scene();
            view.setAcquisitionImage(frame(40, 30, cv::Scalar(200, 100, 50)));
            if (masked)
                view.setSegmentationImage(mask(20, 10, 255));
            view.setBlobs({blob(10, 10, 8, 8), blob(-4, 20, 60, 100)});
            change(dynamic_cast<QGraphicsPixmapItem &>(*scene.items(Qt::AscendingOrder).first()), scene);
            expectSceneOnBlack(view, scene, what);
        }
    }
}

TEST(kelViewPixelsTest, EveryPixelBesideBoxesAloneIsBlack)
{
    kelView view;
    QGraphicsScene &scene = *dynamic_cast<QGraphicsView *>(view.widget())->scene();
    view.setBlobs({blob(10, 10, 50, 40), blob(30, 20, 100, 5)});
    expectSceneOnBlack(view, scene, "boxes alone");
    const cv::Mat picture = view.getDisplay()->getImage();
    EXPECT_EQ(picture.at<cv::Vec4b>(picture.rows - 3, picture.cols - 3), cv::Vec4b(0, 0, 0, 255));
}

TEST(kelViewRGBDPixelsTest, EveryPixelIsTheScenesOrBlackWhateverIsSwitchedOn)
{
    rgbd::View view;
    rgbd::setEverything(view);
    view.showNothing();
    for (const int key : rgbd::overlayKeys) {
        if (key == Qt::Key_W) // on the screen, not in the picture
            continue;
        view.press(key);
        expectSceneOnBlack(view, view.switches(), QKeySequence(key).toString().toLatin1().constData());
    }
    view.press(Qt::Key_D);
    expectSceneOnBlack(view, view.switches(), "the depth");
    view.d().acquisitionDepth.reset();
    expectSceneOnBlack(view, view.switches(), "no background, then the frame");
    view.d().acquisitionImage.reset();
    expectSceneOnBlack(view, view.switches(), "no background");
}
