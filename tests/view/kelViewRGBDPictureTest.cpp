#include "support/Capture.h"
#include "support/RgbdView.h"

#include <gmock/gmock.h>

#include <memory>

using namespace rgbd;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// The background.

TEST(kelViewRGBDTest, AFrameIsShownInTheRightColours)
{
    for (int width = 1; width <= 9; ++width) {
        View view;
        cv::Mat pixels(3, width, CV_8UC3);
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x)
                pixels.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(10 + x), uchar(100 + y), uchar(200 + x + y));
        view.setAcquisitionImage(image(pixels));
        view.updateDisplay();
        ASSERT_EQ(background(view).size(), QSize(width, 3));
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x)
                EXPECT_EQ(background(view).pixel(x, y), qRgb(200 + x + y, 100 + y, 10 + x)) << x << ", " << y;
        EXPECT_EQ(view.all<QGraphicsPixmapItem>().at(0)->pos(), QPointF(0, 0));
    }
}

TEST(kelViewRGBDTest, AFrameThatIsPartOfALargerMatrixIsShownByItself)
{
    View view;
    cv::Mat pixels(10, 11, CV_8UC3, cv::Scalar(1, 2, 3));
    cv::Mat part = pixels(cv::Rect(2, 3, 5, 4));
    for (int y = 0; y < 4; ++y)
        part.row(y).setTo(cv::Scalar(4, 5, 6 + y));
    ASSERT_FALSE(part.isContinuous());
    view.setAcquisitionImage(image(part));
    view.updateDisplay();
    ASSERT_EQ(background(view).size(), QSize(5, 4));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(background(view).pixel(x, y), qRgb(6 + y, 5, 4)) << x << ", " << y;
}

TEST(kelViewRGBDTest, TheCallersFrameIsLeftAloneAndShownAsItWas)
{
    View view;
    cv::Mat pixels(4, 5, CV_8UC3, cv::Scalar(1, 2, 3));
    view.setAcquisitionImage(image(pixels));
    view.updateDisplay();
    EXPECT_EQ(pixels.at<cv::Vec3b>(3, 4), cv::Vec3b(1, 2, 3));
    pixels.setTo(cv::Scalar(7, 8, 9));
    EXPECT_EQ(background(view).pixel(4, 3), qRgb(3, 2, 1));
    EXPECT_EQ(view.getDisplay()->getImage().at<cv::Vec4b>(3, 4), cv::Vec4b(1, 2, 3, 255));
    view.updateDisplay();
    EXPECT_EQ(background(view).pixel(4, 3), qRgb(9, 8, 7)) << "the buffer is shared until the update";
}

TEST(kelViewRGBDTest, SceneAndWidgetTakeTheSizeOfTheBackground)
{
    View view;
    view.widget()->resize(1, 1);
    const int frameWidth = view.graphicsView()->frameWidth();
    const QSize border(2 * frameWidth, 2 * frameWidth);
    view.setAcquisitionImage(frame(220, 150));
    view.setAcquisitionDepth(depthFrame(210, 240));
    view.updateDisplay();
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 220, 150));
    EXPECT_EQ(view.widget()->size(), QSize(220, 150) + border);
    view.press(Qt::Key_D);
    view.updateDisplay();
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 210, 240));
    EXPECT_EQ(view.widget()->size(), QSize(210, 240) + border);
}

TEST(kelViewRGBDTest, OverlaysLeaveTheSceneRectangleOfTheBackground)
{
    View view;
    setEverything(view);
    view.setActors({actor(1, cv::Rect(-500, -500, 5000, 5000)), withPixels(2, {{-900, 4000}})});
    view.press(Qt::Key_A);
    view.updateDisplay();
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 640, 480));
}

TEST(kelViewRGBDTest, DepthIsShownInGreyFromItsLeastToItsGreatestValue)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.setAcquisitionDepth(image((cv::Mat_<ushort>(2, 3) << 1000, 1500, 2000, 3000, 1001, 1250)));
    view.press(Qt::Key_D);
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
    const QImage shown = background(view);
    ASSERT_EQ(shown.size(), QSize(3, 2));
    EXPECT_EQ(shown.pixel(0, 0), qRgb(0, 0, 0));
    EXPECT_EQ(shown.pixel(1, 0), qRgb(64, 64, 64));
    EXPECT_EQ(shown.pixel(0, 1), qRgb(255, 255, 255));
    EXPECT_EQ(shown.pixel(1, 1), qRgb(0, 0, 0));
    EXPECT_FALSE(view.all<QGraphicsPixmapItem>().at(0)->pixmap().hasAlphaChannel());
    EXPECT_TRUE(view.scene()->showDepth);
}

TEST(kelViewRGBDTest, DepthOfEveryTypeIsNormalisedAsTheToolkitDoes)
{
    cv::RNG random(7);
    const std::pair<int, std::pair<double, double>> kinds[] = {
        {CV_8UC1, {3, 77}},       {CV_8UC1, {0, 256}},    {CV_8SC1, {-100, 100}},     {CV_16UC1, {0, 65536}},
        {CV_16UC1, {500, 8000}},  {CV_16UC1, {400, 403}}, {CV_16SC1, {-900, 9000}},   {CV_32SC1, {-1e6, 1e6}},
        {CV_32FC1, {-1, 8.5}},    {CV_32FC1, {0, 1e-30}}, {CV_32FC1, {1e6, 1e6 + 9}}, {CV_64FC1, {-2, 4e9}},
        {CV_32FC1, {-3e38, 3e38}}};
    for (const auto &[type, range] : kinds) {
        for (int width = 1; width <= 67; width += 11) {
            cv::Mat depth(31, width, type);
            random.fill(depth, cv::RNG::UNIFORM, range.first, range.second);
            const cv::Mat before = depth.clone();
            cv::Mat grey;
            cv::normalize(depth, grey, 0, 255, cv::NORM_MINMAX, CV_8U);
            View view;
            view.setAcquisitionDepth(image(depth));
            view.press(Qt::Key_D);
            view.updateDisplay();
            ASSERT_EQ(background(view).size(), QSize(width, 31));
            EXPECT_EQ(notGrey(background(view), grey), 0) << "type " << type << " width " << width;
            EXPECT_EQ(cv::norm(depth, before, cv::NORM_INF), 0) << "the depth image is only read";
        }
    }
}

TEST(kelViewRGBDTest, DepthThatIsNoNumberIsShownAsTheToolkitDoes)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const int type : {CV_32FC1, CV_64FC1})
        for (const auto &odd : {std::vector<double>{nan}, {infinity}, {-infinity}, {nan, infinity}})
            for (const int width : {1, 5, 16, 37}) {
                cv::Mat depth(6, width, type);
                cv::RNG(3).fill(depth, cv::RNG::UNIFORM, 500, 4000);
                for (size_t i = 0; i < odd.size(); ++i) {
                    depth(cv::Rect(width / 2, 2 + static_cast<int>(i), 1, 1)).setTo(odd[i]);
                    depth(cv::Rect(0, static_cast<int>(i), 1, 1)).setTo(odd[i]);
                }
                cv::Mat grey;
                cv::normalize(depth, grey, 0, 255, cv::NORM_MINMAX, CV_8U);
                View view;
                view.setAcquisitionDepth(image(depth));
                view.press(Qt::Key_D);
                view.updateDisplay();
                EXPECT_EQ(notGrey(background(view), grey), 0)
                    << "type " << type << " width " << width << " with " << odd[0];
            }
}

TEST(kelViewRGBDTest, DepthThatIsTheSameEverywhereIsBlack)
{
    for (const int type : {CV_8UC1, CV_16UC1, CV_32FC1}) {
        View view;
        view.setAcquisitionDepth(image(cv::Mat(3, 4, type, cv::Scalar(42))));
        view.press(Qt::Key_D);
        view.updateDisplay();
        EXPECT_EQ(notGrey(background(view), cv::Mat(3, 4, CV_8UC1, cv::Scalar(0))), 0) << type;
    }
}

TEST(kelViewRGBDTest, DepthThatIsPartOfALargerMatrixIsShownByItself)
{
    for (const int type : {CV_8UC1, CV_16UC1, CV_32FC1}) {
        View view;
        cv::Mat depth(10, 11, type, cv::Scalar(250));
        cv::Mat part = depth(cv::Rect(2, 3, 5, 4));
        for (int x = 0; x < 5; ++x)
            part.col(x).setTo(10 + x);
        view.setAcquisitionDepth(image(part));
        view.press(Qt::Key_D);
        view.updateDisplay();
        cv::Mat grey;
        cv::normalize(part, grey, 0, 255, cv::NORM_MINMAX, CV_8U);
        ASSERT_EQ(background(view).size(), QSize(5, 4));
        EXPECT_EQ(notGrey(background(view), grey), 0) << type;
    }
}

TEST(kelViewRGBDTest, WithoutADepthImageTheDepthBackgroundTurnsItselfOff)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.press(Qt::Key_D);
    ASSERT_TRUE(view.scene()->showDepth);
    view.updateDisplay();
    EXPECT_FALSE(view.scene()->showDepth);
    EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"})) << "not the colour image either";
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
    EXPECT_EQ(background(view).pixel(7, 7), qRgb(30, 20, 10));
}

TEST(kelViewRGBDTest, ADepthImageThatHasLostItsPixelsTurnsTheDepthBackgroundOff)
{
    for (const cv::Mat &empty : emptyMatrices(CV_16UC1)) {
        View view;
        const Image depth = depthFrame(8, 8);
        view.setAcquisitionDepth(depth);
        view.press(Qt::Key_D);
        view.updateDisplay();
        ASSERT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
        view.widget()->resize(10, 10);
        depth->setImage(empty);
        view.updateDisplay();
        EXPECT_FALSE(view.scene()->showDepth);
        EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"}));
        EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 8, 8));
        EXPECT_EQ(view.widget()->size(), QSize(10, 10));
    }
}

TEST(kelViewRGBDTest, WithoutAColourImageThereIsNoBackground)
{
    View view;
    view.setAcquisitionDepth(depthFrame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"}));
    for (const cv::Mat &empty : emptyMatrices(CV_8UC3)) {
        const Image color = frame(8, 8);
        view.setAcquisitionImage(color);
        view.updateDisplay();
        EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
        color->setImage(empty);
        view.updateDisplay();
        EXPECT_EQ(content(view), (Strings{"EVENT LIST", "FPS"}));
    }
}

TEST(kelViewRGBDTest, AFrameThatCannotBeConvertedLetsTheErrorThrough)
{
    View view;
    view.setAcquisitionImage(image(cv::Mat(6, 6, CV_8UC2, cv::Scalar(0))));
    EXPECT_THROW(view.updateDisplay(), cv::Exception);
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
}

// The display image.

TEST(kelViewRGBDTest, TheDisplayHoldsTheSceneInBlueGreenRedAnd255)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_Z, Qt::Key_A, Qt::Key_I, Qt::Key_G, Qt::Key_L, Qt::Key_P, Qt::Key_W});
    const cv::Mat picture = view.picture();
    EXPECT_EQ(picture.rows, 480);
    EXPECT_EQ(picture.cols, 640);
    EXPECT_EQ(picture.type(), CV_8UC4);
    EXPECT_EQ(differentBytes(picture, rendered(*view.scene())), 0);
    EXPECT_EQ(picture.at<cv::Vec4b>(200, 10), cv::Vec4b(10, 20, 30, 255));
    EXPECT_EQ(picture.at<cv::Vec4b>(250, 280), cv::Vec4b(0, 255, 0, 255)) << "the box of the actor";
    for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
        ASSERT_EQ(bgra[3], 255);
}

TEST(kelViewRGBDTest, TheDisplayShowsDepthWhenTheScreenDoes)
{
    View view;
    setEverything(view);
    view.showNothing();
    view.press(Qt::Key_D);
    const cv::Mat picture = view.picture();
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 0), black);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 639), cv::Vec4b(255, 255, 255, 255));
}

TEST(kelViewRGBDTest, BeforeThereWasABackgroundTheDisplayIsMadeAndStaysEmpty)
{
    View view;
    setEverything(view);
    view.d().acquisitionImage.reset();
    MessageCapture messages;
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay().isNull());
    EXPECT_TRUE(view.getDisplay()->getImage().empty());
    EXPECT_EQ(view.getDisplay()->identifier(), "kelDataImage");
    view.updateDisplay();
    EXPECT_TRUE(view.getDisplay()->getImage().empty());
    EXPECT_TRUE(messages.lines().isEmpty());
    view.setAcquisitionImage(frame(6, 4));
    EXPECT_EQ(view.picture().size(), cv::Size(6, 4));
}

TEST(kelViewRGBDTest, AFrameWithoutABackgroundIsBlackBehindItsOverlays)
{
    View view;
    view.showNothing();
    const Image color = frame(64, 48, cv::Scalar(200, 201, 202));
    view.setAcquisitionImage(color);
    view.updateDisplay();
    color->setImage(cv::Mat());
    for (int run = 0; run < 20; ++run) {
        // What was freed last is what the next picture may find.
        std::vector<std::unique_ptr<cv::Mat>> garbage;
        for (int i = 0; i < 4; ++i)
            garbage.push_back(std::make_unique<cv::Mat>(48, 64, CV_8UC4, cv::Scalar::all(0x5a)));
        garbage.clear();
        const cv::Mat &picture = view.picture();
        ASSERT_EQ(picture.size(), cv::Size(64, 48));
        ASSERT_EQ(pixelsOtherThan(black, picture), 0) << run;
    }
    view.setActors({actor(1, cv::Rect(10, 10, 20, 20))});
    view.press(Qt::Key_B);
    const cv::Mat &picture = view.picture();
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 15), cv::Vec4b(255, 0, 255, 255));
    EXPECT_EQ(picture.at<cv::Vec4b>(20, 20), black);
}

TEST(kelViewRGBDTest, TheSceneIsRenderedToWholePixelsKeepingItsAspectRatio)
{
    View view;
    view.showNothing();
    view.press(Qt::Key_B);
    const Image color = frame(64, 48);
    view.setAcquisitionImage(color);
    view.updateDisplay();
    color->setImage(cv::Mat());
    view.setActors({actor(1, cv::Rect(2, 2, 4, 4)), actor(3, cv::Rect(5, 8, 9, 6))});
    for (const QRectF &rect : {QRectF(0, 0, 10.4, 20.6), QRectF(0, 0, 10.5, 19.5), QRectF(1.6, 0, 0.5, 12),
                               QRectF(-3, -4, 20.5, 7.5), QRectF(0, 0, 12, 7)}) {
        view.scene()->setSceneRect(rect);
        const cv::Mat &picture = view.picture();
        EXPECT_EQ(picture.size(), cv::Size(qRound(rect.width()), qRound(rect.height())));
        EXPECT_EQ(differentBytes(picture, rendered(*view.scene())), 0);
        EXPECT_GT(pixelsOtherThan(black, picture), 0);
    }
}

TEST(kelViewRGBDTest, TheDisplayObjectStaysTheSame)
{
    View view;
    const Image own(new kelDataImage);
    view.getDisplay() = own;
    view.setAcquisitionImage(frame(6, 4));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), own);
    EXPECT_EQ(own->getImage().size(), cv::Size(6, 4));
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), own);
    EXPECT_EQ(own->getImage().size(), cv::Size(8, 8));
    view.getDisplay().reset();
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay().isNull());
    EXPECT_NE(view.getDisplay(), own);
}

TEST(kelViewRGBDTest, AnOldPictureIsUnaffectedByTheNextUpdate)
{
    View view;
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(1, 2, 3)));
    const cv::Mat old = view.picture();
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(4, 5, 6)));
    EXPECT_NE(view.picture().data, old.data);
    EXPECT_EQ(old.at<cv::Vec4b>(3, 5), cv::Vec4b(1, 2, 3, 255));
}

TEST(kelViewRGBDTest, ThePictureOutlivesTheView)
{
    auto view = std::make_unique<View>();
    view->setAcquisitionImage(frame(64, 48, cv::Scalar(1, 2, 3)));
    view->updateDisplay();
    const Image display = view->getDisplay();
    ASSERT_NE(display->getImage().u, nullptr) << "the matrix owns its pixels";
    view.reset();
    EXPECT_EQ(display->getImage().at<cv::Vec4b>(47, 63), cv::Vec4b(1, 2, 3, 255));
}

// Masks, blobs and physical objects.

TEST(kelViewRGBDTest, AMaskIsShownAsInThePlainView)
{
    View view;
    view.setSegmentationImage(image((cv::Mat_<uchar>(2, 4) << 255, 254, 0, 1, 0, 255, 128, 255)));
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(0)->pixmap().isNull()) << "the upper one is the mask's";
    const QImage shown =
        view.all<QGraphicsPixmapItem>().at(1)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(shown.size(), QSize(4, 2));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(shown.pixel(i % 4, i / 4), i == 0 || i == 5 || i == 7 ? 0xff000000 : 0u) << i;
    view.setSegmentationImage(Image());
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(1)->isVisible()) << "a null pointer changes nothing";
    view.setSegmentationImage(Image(new kelDataImage));
    EXPECT_FALSE(view.all<QGraphicsPixmapItem>().at(1)->isVisible());
    view.setSegmentationImage(image(cv::Mat(2, 8, CV_8UC1, cv::Scalar(255))));
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(1)->isVisible());
    EXPECT_EQ(view.all<QGraphicsPixmapItem>().at(1)->pixmap().size(), QSize(8, 2));
}

TEST(kelViewRGBDTest, AMaskWhoseWidthIsNoMultipleOfFourIsShearedAsInThePlainView)
{
    View view;
    // Rows are taken to start at bytes 0, 8 and 16; the mask ends at byte 9.
    view.setSegmentationImage(image((cv::Mat_<uchar>(2, 5) << 255, 0, 0, 0, 0, 0, 0, 0, 255, 0)));
    const QImage shown =
        view.all<QGraphicsPixmapItem>().at(1)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(shown.pixel(0, 0), 0xff000000);
    EXPECT_EQ(shown.pixel(0, 1), 0xff000000) << "byte 8";
    EXPECT_EQ(shown.pixel(3, 1), 0u);
}

TEST(kelViewRGBDTest, BlobsAndPhysicalObjectsAreShownAsInThePlainView)
{
    View view;
    view.setBlobs({blob(1, 2, 30, 40), Blob(), blob(-5, 6, 7, 8)});
    view.setPhysicalObjects({PhysicalObject(), physicalObject(3, 4, 5, 6)});
    EXPECT_THAT(rectangles(view, Qt::magenta), ElementsAre(QRectF(1, 2, 30, 40), QRectF(-5, 6, 7, 8)));
    EXPECT_THAT(rectangles(view, Qt::cyan), ElementsAre(QRectF(3, 4, 5, 6)));
    EXPECT_EQ(content(view), (Strings{"picture", "picture", "box", "box", "box"}));
    for (const auto *box : view.all<QGraphicsRectItem>())
        EXPECT_EQ(box->brush(), QBrush(Qt::NoBrush));
    view.setBlobs({blob(7, 7, 7, 7)});
    EXPECT_THAT(rectangles(view, Qt::magenta), ElementsAre(QRectF(7, 7, 7, 7)));
    EXPECT_THAT(rectangles(view, Qt::cyan), ElementsAre(QRectF(3, 4, 5, 6)));
    view.setPhysicalObjects({});
    EXPECT_THAT(rectangles(view), ElementsAre(QRectF(7, 7, 7, 7)));
    view.setBlobs({});
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
}

TEST(kelViewRGBDTest, RemovedRectanglesAreDeleted)
{
    View view;
    int deleted = 0;
    for (const bool updated : {false, true}) {
        view.setBlobs({blob(1, 1, 4, 4)});
        // A child dies with its rectangle.
        (new WitnessItem(&deleted))->setParentItem(view.all<QGraphicsRectItem>().at(0));
        deleted = 0;
        view.setPhysicalObjects({});
        EXPECT_EQ(deleted, 0);
        if (updated)
            view.updateDisplay();
        else
            view.setBlobs({});
        EXPECT_EQ(deleted, 1);
    }
}

TEST(kelViewRGBDTest, MasksBlobsAndObjectsLastUntilTheNextUpdate)
{
    const Image mask = image(cv::Mat(4, 4, CV_8UC1, cv::Scalar(255)));
    View view;
    for (int i = 0; i < 3; ++i) {
        view.setSegmentationImage(mask);
        view.setBlobs({blob(1, 2, 3, 4), blob(5, 6, 7, 8)});
        view.setPhysicalObjects({physicalObject(9, 9, 9, 9)});
        EXPECT_EQ(rectangles(view, Qt::magenta).size(), 2u);
        EXPECT_EQ(rectangles(view, Qt::cyan).size(), 1u);
        EXPECT_EQ(view.all<QGraphicsPixmapItem>().back()->pixmap().size(), QSize(4, 4));
        if (i == 1)
            view.press(Qt::Key_Escape); // The prompt clears the scene too.
        view.updateDisplay();
        EXPECT_EQ(content(view), i == 1 ? (Strings{"PRESS", "FPS"}) : (Strings{"EVENT LIST", "FPS"}));
        if (i == 1)
            view.press(Qt::Key_Escape);
    }
    view.setBlobs({});
    view.setPhysicalObjects({});
    view.setSegmentationImage(Image(new kelDataImage));
    view.setSegmentationImage(Image());
    for (const auto *item : view.all<QGraphicsPixmapItem>())
        EXPECT_FALSE(item->isVisible() && !item->pixmap().isNull());
    EXPECT_THAT(rectangles(view), IsEmpty());
    EXPECT_EQ(words(view), (Strings{"EVENT LIST : ", "FPS : 0"}));
}

TEST(kelViewRGBDTest, MasksBlobsAndObjectsWorkAgainAfterAnUpdate)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.setSegmentationImage(image(cv::Mat(4, 4, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(1, 2, 3, 4)});
    view.setPhysicalObjects({physicalObject(5, 6, 7, 8)});
    view.updateDisplay();
    view.setSegmentationImage(image(cv::Mat(2, 8, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    view.setSegmentationImage(image(cv::Mat(3, 8, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(3, 3, 3, 3)});
    view.setPhysicalObjects({physicalObject(4, 4, 4, 4)});
    EXPECT_THAT(content(view), UnorderedElementsAre("picture", "EVENT LIST", "FPS", "picture", "box", "box"));
    EXPECT_THAT(rectangles(view, Qt::magenta), ElementsAre(QRectF(3, 3, 3, 3)));
    EXPECT_THAT(rectangles(view, Qt::cyan), ElementsAre(QRectF(4, 4, 4, 4)));
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 8, 8));
    const cv::Mat shown = rendered(*view.scene());
    EXPECT_EQ(shown.at<cv::Vec4b>(1, 7), black) << "the mask, above the frame";
    EXPECT_EQ(shown.at<cv::Vec4b>(3, 3), cv::Vec4b(255, 0, 255, 255)) << "the blob";
    EXPECT_EQ(shown.at<cv::Vec4b>(7, 7), cv::Vec4b(255, 255, 0, 255)) << "the object, above the blob";
}

TEST(kelViewRGBDTest, TheSceneTellsItsItemsAsTheyLie)
{
    View view;
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    const auto upwards = [&view] { return view.scene()->items(Qt::AscendingOrder); };
    const auto downwards = [&view] {
        QList<QGraphicsItem *> items = view.scene()->items(); // the topmost first
        std::reverse(items.begin(), items.end());
        return items;
    };
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS", "box", "box"}));
    EXPECT_EQ(downwards(), upwards());
    view.setBlobs({blob(3, 3, 3, 3)});
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS", "box", "box"}));
    EXPECT_EQ(rectangles(view), (std::vector<QRectF>{QRectF(2, 2, 2, 2), QRectF(3, 3, 3, 3)}));
    EXPECT_EQ(downwards(), upwards());
}
