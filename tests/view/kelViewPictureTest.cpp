#include "support/PlainView.h"

#include "support/Capture.h"

#include <gmock/gmock.h>

#include <memory>

using namespace plain;
using testing::ElementsAre;
using testing::IsEmpty;

// The frame.

TEST(kelViewTest, AFrameIsShownInTheRightColours)
{
    kelView view;
    cv::Mat pixels(2, 3, CV_8UC3);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            pixels.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(10 + x), uchar(100 + y), uchar(200 + x + y));
    view.setAcquisitionImage(image(pixels));
    const QImage shown = frameItem(view)->pixmap().toImage();
    ASSERT_EQ(shown.size(), QSize(3, 2));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(shown.pixel(x, y), qRgb(200 + x + y, 100 + y, 10 + x)) << x << ", " << y;
}

TEST(kelViewTest, TheCallersFrameIsLeftAloneAndNotReferredTo)
{
    kelView view;
    cv::Mat pixels(4, 5, CV_8UC3, cv::Scalar(1, 2, 3));
    view.setAcquisitionImage(image(pixels));
    EXPECT_EQ(pixels.at<cv::Vec3b>(3, 4), cv::Vec3b(1, 2, 3));
    pixels.setTo(cv::Scalar(7, 8, 9));
    EXPECT_EQ(frameItem(view)->pixmap().toImage().pixel(4, 3), qRgb(3, 2, 1));
}

TEST(kelViewTest, AFrameThatIsPartOfALargerMatrixIsShownByItself)
{
    kelView view;
    cv::Mat pixels(10, 11, CV_8UC3, cv::Scalar(1, 2, 3));
    cv::Mat part = pixels(cv::Rect(2, 3, 5, 4));
    part.setTo(cv::Scalar(4, 5, 6));
    ASSERT_FALSE(part.isContinuous());
    view.setAcquisitionImage(image(part));
    const QImage shown = frameItem(view)->pixmap().toImage();
    ASSERT_EQ(shown.size(), QSize(5, 4));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(shown.pixel(x, y), qRgb(6, 5, 4)) << x << ", " << y;
}

TEST(kelViewTest, FramesOfEveryWidthAreShownWithoutShear)
{
    for (int width = 1; width <= 9; ++width) {
        kelView view;
        cv::Mat pixels(3, width, CV_8UC3, cv::Scalar(0, 0, 0));
        for (int y = 0; y < 3; ++y)
            pixels.at<cv::Vec3b>(y, width - 1) = cv::Vec3b(uchar(y + 1), 0, 0);
        view.setAcquisitionImage(image(pixels));
        const QImage shown = frameItem(view)->pixmap().toImage();
        for (int y = 0; y < 3; ++y)
            EXPECT_EQ(shown.pixel(width - 1, y), qRgb(0, 0, y + 1)) << "width " << width << " row " << y;
    }
}

TEST(kelViewTest, TheSceneTakesTheSizeOfTheFrame)
{
    kelView view;
    view.setAcquisitionImage(frame(64, 48));
    EXPECT_EQ(scene(view)->sceneRect(), frameItem(view)->boundingRect());
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 64, 48));
    view.setAcquisitionImage(frame(32, 100));
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 32, 100));
}

TEST(kelViewTest, TheWidgetAdjustsItsSizeToTheFrame)
{
    kelView view;
    QGraphicsView *widget = graphicsView(view);
    widget->resize(1, 1);
    const QSize border(2 * widget->frameWidth(), 2 * widget->frameWidth());
    view.setAcquisitionImage(frame(220, 150));
    EXPECT_EQ(widget->size(), QSize(220, 150) + border);
    view.setAcquisitionImage(frame(210, 240));
    EXPECT_EQ(widget->size(), QSize(210, 240) + border);
    widget->resize(10, 10);
    view.setAcquisitionImage(Image());
    view.setSegmentationImage(mask(300, 200, 0));
    view.setBlobs({blob(0, 0, 400, 400)});
    view.updateDisplay();
    EXPECT_EQ(widget->size(), QSize(10, 10)) << "only a frame changes the size";
}

TEST(kelViewTest, FramesWithoutPixelsLeaveThePictureAndTheSceneRectangle)
{
    kelView view;
    view.setAcquisitionImage(frame(64, 48));
    const qint64 shown = frameItem(view)->pixmap().cacheKey();
    graphicsView(view)->resize(10, 10);
    MessageCapture messages;
    view.setAcquisitionImage(Image());
    view.setAcquisitionImage(Image(new kelDataImage));
    view.setAcquisitionImage(image(cv::Mat(0, 5, CV_8UC3)));
    view.setAcquisitionImage(image(cv::Mat(5, 0, CV_8UC3)));
    // A matrix that holds memory, but no elements.
    cv::Mat emptied(4, 4, CV_8UC3);
    emptied.resize(0);
    ASSERT_NE(emptied.data, nullptr);
    view.setAcquisitionImage(image(emptied));
    EXPECT_EQ(frameItem(view)->pixmap().cacheKey(), shown);
    EXPECT_TRUE(frameItem(view)->isVisible());
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 64, 48));
    EXPECT_EQ(view.widget()->size(), QSize(10, 10));
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelViewTest, AFrameThatCannotBeConvertedLetsTheErrorThrough)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    EXPECT_THROW(view.setAcquisitionImage(image(cv::Mat(6, 6, CV_8UC2, cv::Scalar(0)))), cv::Exception);
    EXPECT_EQ(frameItem(view)->pixmap().size(), QSize(8, 4));
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 8, 4));
}

// The mask.

TEST(kelViewTest, AMaskPaintsBlackExactlyWhereItIs255)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 2, cv::Scalar(10, 20, 30)));
    view.setSegmentationImage(mask(8, {255, 254, 0, 1, 127, 128, 253, 255, 0, 255, 0, 255, 0, 255, 0, 255}));
    EXPECT_EQ(maskRow(view, 0), "#......#");
    EXPECT_EQ(maskRow(view, 1), ".#.#.#.#");
    EXPECT_EQ(pixel(view, 0, 0), black);
    const cv::Vec4b shown(10, 20, 30, 255);
    for (int x = 1; x < 7; ++x)
        EXPECT_EQ(pixel(view, x, 0), shown) << x;
    EXPECT_EQ(pixel(view, 7, 0), black);
    EXPECT_EQ(pixel(view, 0, 1), shown);
    EXPECT_EQ(pixel(view, 1, 1), black);
}

TEST(kelViewTest, EveryMaskValueBut255IsTransparent)
{
    kelView view;
    std::vector<uchar> values(256);
    for (int i = 0; i < 256; ++i)
        values[static_cast<size_t>(i)] = static_cast<uchar>(i);
    view.setSegmentationImage(mask(256, values));
    EXPECT_EQ(maskRow(view, 0), std::string(255, '.') + '#');
}

TEST(kelViewTest, ANullMaskChangesNothing)
{
    kelView view;
    view.setSegmentationImage(mask(4, {255, 0, 0, 255}));
    view.setSegmentationImage(Image());
    EXPECT_TRUE(maskItem(view)->isVisible());
    EXPECT_EQ(maskRow(view, 0), "#..#");
    view.setSegmentationImage(Image(new kelDataImage));
    view.setSegmentationImage(Image());
    EXPECT_FALSE(maskItem(view)->isVisible());
}

TEST(kelViewTest, AnEmptyMaskHidesTheOverlayUntilTheNextOne)
{
    const cv::Mat emptyOnes[] = {cv::Mat(), cv::Mat(0, 4, CV_8UC1), cv::Mat(4, 0, CV_8UC1),
                                 cv::Mat(4, 4, CV_8UC1).rowRange(1, 1)};
    for (const cv::Mat &empty : emptyOnes) {
        kelView view;
        view.setAcquisitionImage(frame(4, 4));
        view.setSegmentationImage(mask(4, 4, 255));
        EXPECT_EQ(pixel(view, 2, 2), black);
        view.setSegmentationImage(image(empty));
        EXPECT_FALSE(maskItem(view)->isVisible());
        EXPECT_TRUE(frameItem(view)->isVisible());
        EXPECT_EQ(pixel(view, 2, 2), cv::Vec4b(10, 20, 30, 255));
        view.setSegmentationImage(mask(4, {255, 0, 0, 0}));
        EXPECT_TRUE(maskItem(view)->isVisible());
        EXPECT_EQ(maskRow(view, 0), "#...");
        EXPECT_EQ(pixel(view, 0, 0), black);
    }
}

TEST(kelViewTest, AMaskLeavesTheSceneRectangle)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 8));
    view.setSegmentationImage(mask(32, 16, 255));
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 8, 8));
    EXPECT_EQ(maskItem(view)->pixmap().size(), QSize(32, 16));
    EXPECT_EQ(maskItem(view)->pos(), QPointF(0, 0));
}

TEST(kelViewTest, AMaskWhoseWidthIsNoMultipleOfFourIsSheared)
{
    kelView view;
    // Rows are taken to start at bytes 0, 8 and 16; the mask ends at byte 15.
    view.setSegmentationImage(mask(5,
                                   {255, 0, 0, 0, 255, //
                                    0, 0, 0, 255, 255, //
                                    255, 255, 255, 255, 0}));
    EXPECT_EQ(maskRow(view, 0), "#...#");
    EXPECT_EQ(maskRow(view, 1), "#####") << "bytes 8 to 12";
    EXPECT_EQ(maskRow(view, 2), ".....") << "behind the end";

    view.setSegmentationImage(mask(6,
                                   {0, 0, 0, 0, 0, 255, //
                                    255, 255, 0, 0, 255, 0, //
                                    255, 255, 255, 0, 0, 255}));
    EXPECT_EQ(maskRow(view, 0), ".....#");
    EXPECT_EQ(maskRow(view, 1), "..#.##") << "bytes 8 to 13";
    EXPECT_EQ(maskRow(view, 2), ".#....") << "bytes 16 and 17";

    view.setSegmentationImage(mask(7,
                                   {0, 0, 0, 0, 0, 0, 255, //
                                    255, 0, 0, 255, 0, 0, 0}));
    EXPECT_EQ(maskRow(view, 0), "......#");
    EXPECT_EQ(maskRow(view, 1), "..#....") << "bytes 8 to 13";
}

TEST(kelViewTest, AMaskWhoseWidthIsAMultipleOfFourIsNotSheared)
{
    for (const int width : {4, 8, 12, 640}) {
        kelView view;
        cv::Mat pixels(3, width, CV_8UC1, cv::Scalar(0));
        pixels.row(1).setTo(255);
        pixels.at<uchar>(2, 0) = 255;
        view.setSegmentationImage(image(pixels));
        EXPECT_EQ(maskRow(view, 0), std::string(static_cast<size_t>(width), '.'));
        EXPECT_EQ(maskRow(view, 1), std::string(static_cast<size_t>(width), '#'));
        EXPECT_EQ(maskRow(view, 2), '#' + std::string(static_cast<size_t>(width) - 1, '.'));
    }
}

TEST(kelViewTest, AMaskThatIsPartOfALargerMatrixIsShownByItself)
{
    kelView view;
    cv::Mat pixels(6, 12, CV_8UC1, cv::Scalar(255));
    cv::Mat part = pixels(cv::Rect(3, 1, 4, 3));
    part.setTo(0);
    part.at<uchar>(0, 0) = 255;
    part.at<uchar>(1, 2) = 255;
    part.at<uchar>(2, 3) = 255;
    ASSERT_FALSE(part.isContinuous());
    view.setSegmentationImage(image(part));
    EXPECT_EQ(maskRow(view, 0), "#...");
    EXPECT_EQ(maskRow(view, 1), "..#.");
    EXPECT_EQ(maskRow(view, 2), "...#");
}

TEST(kelViewTest, TheCallersMaskIsLeftAloneAndNotReferredTo)
{
    kelView view;
    cv::Mat pixels(1, 4, CV_8UC1, cv::Scalar(255));
    view.setSegmentationImage(image(pixels));
    EXPECT_EQ(pixels.at<uchar>(0, 3), 255);
    pixels.setTo(0);
    EXPECT_EQ(maskRow(view, 0), "####");
}

TEST(kelViewTest, NothingBehindATinyMaskIsRead)
{
    // The bytes around each mask are 255: black pixels behind the mask's own would give the reading away.
    for (int width = 1; width <= 9; ++width)
        for (int height = 1; height <= 3; ++height) {
            kelView view;
            std::vector<uchar> bytes(static_cast<size_t>(width * height) + 64, 255);
            cv::Mat pixels(height, width, CV_8UC1, bytes.data());
            pixels.setTo(0);
            view.setSegmentationImage(image(pixels));
            for (int y = 0; y < height; ++y)
                EXPECT_EQ(maskRow(view, y), std::string(static_cast<size_t>(width), '.'))
                    << width << " x " << height << " row " << y;
        }
    // One byte on the heap with nothing behind it: for the sanitizer to watch.
    const std::unique_ptr<uchar[]> byte(new uchar[1]{255});
    kelView view;
    view.setSegmentationImage(image(cv::Mat(1, 1, CV_8UC1, byte.get())));
    EXPECT_EQ(maskRow(view, 0), "#");
}

// The boxes.

TEST(kelViewTest, BlobsAreMagentaRectanglesOfTheirBoxes)
{
    kelView view;
    view.setBlobs({blob(1, 2, 30, 40), blob(-5, 6, 7, 8)});
    EXPECT_EQ(stacking(view), "ppbb");
    EXPECT_THAT(blobBoxes(view), ElementsAre(QRectF(1, 2, 30, 40), QRectF(-5, 6, 7, 8)));
    for (const QGraphicsItem *item : scene(view)->items())
        if (const auto *box = dynamic_cast<const QGraphicsRectItem *>(item)) {
            EXPECT_EQ(box->pen(), QPen(Qt::magenta, 2));
            EXPECT_EQ(box->brush(), QBrush(Qt::NoBrush));
            EXPECT_EQ(box->pos(), QPointF(0, 0));
            EXPECT_EQ(box->zValue(), 0);
            EXPECT_TRUE(box->isVisible());
        }
}

TEST(kelViewTest, PhysicalObjectsAreCyanRectanglesOfTheirBoxes)
{
    kelView view;
    view.setPhysicalObjects({physicalObject(1, 2, 30, 40), physicalObject(-5, 6, 7, 8)});
    EXPECT_EQ(stacking(view), "ppoo");
    EXPECT_THAT(physicalObjectBoxes(view), ElementsAre(QRectF(1, 2, 30, 40), QRectF(-5, 6, 7, 8)));
    for (const QGraphicsItem *item : scene(view)->items())
        if (const auto *box = dynamic_cast<const QGraphicsRectItem *>(item)) {
            EXPECT_EQ(box->pen(), QPen(Qt::cyan, 2));
            EXPECT_EQ(box->brush(), QBrush(Qt::NoBrush));
            EXPECT_EQ(box->pos(), QPointF(0, 0));
            EXPECT_EQ(box->zValue(), 0);
        }
}

TEST(kelViewTest, TheBoxThatStagesUseIsDrawnNotTheRecordedOne)
{
    kelView view;
    const Blob both = blob(1, 2, 3, 4);
    both->setBoundingBox2D_qt(QRect(50, 60, 70, 80));
    view.setBlobs({both, Blob(new kelDataBlob)});
    EXPECT_THAT(blobBoxes(view), ElementsAre(QRectF(1, 2, 3, 4), QRectF(-1, -1, 0, 0)));
}

TEST(kelViewTest, NewBlobsReplaceTheOldOnesAlone)
{
    kelView view;
    view.setBlobs({blob(1, 1, 1, 1), blob(2, 2, 2, 2)});
    view.setPhysicalObjects({physicalObject(3, 3, 3, 3)});
    view.setBlobs({blob(4, 4, 4, 4)});
    EXPECT_THAT(blobBoxes(view), ElementsAre(QRectF(4, 4, 4, 4)));
    EXPECT_THAT(physicalObjectBoxes(view), ElementsAre(QRectF(3, 3, 3, 3)));
    EXPECT_EQ(stacking(view), "ppob") << "what was added last lies on top";
}

TEST(kelViewTest, NewPhysicalObjectsReplaceTheOldOnesAlone)
{
    kelView view;
    view.setPhysicalObjects({physicalObject(1, 1, 1, 1), physicalObject(2, 2, 2, 2)});
    view.setBlobs({blob(3, 3, 3, 3)});
    view.setPhysicalObjects({physicalObject(4, 4, 4, 4)});
    EXPECT_THAT(physicalObjectBoxes(view), ElementsAre(QRectF(4, 4, 4, 4)));
    EXPECT_THAT(blobBoxes(view), ElementsAre(QRectF(3, 3, 3, 3)));
    EXPECT_EQ(stacking(view), "ppbo");
}

TEST(kelViewTest, AnEmptyListRemovesTheRectanglesOfItsKindAlone)
{
    kelView view;
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    view.setBlobs({});
    EXPECT_EQ(stacking(view), "ppo");
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({});
    EXPECT_EQ(stacking(view), "ppb");
    view.setBlobs({});
    EXPECT_EQ(stacking(view), "pp");
}

TEST(kelViewTest, NullPointersInAListAreSkipped)
{
    kelView view;
    MessageCapture messages;
    view.setBlobs({Blob(), blob(1, 1, 1, 1), Blob(), blob(2, 2, 2, 2), Blob()});
    EXPECT_THAT(blobBoxes(view), ElementsAre(QRectF(1, 1, 1, 1), QRectF(2, 2, 2, 2)));
    view.setPhysicalObjects({PhysicalObject(), physicalObject(3, 3, 3, 3)});
    EXPECT_THAT(physicalObjectBoxes(view), ElementsAre(QRectF(3, 3, 3, 3)));
    view.setBlobs({Blob()});
    EXPECT_THAT(blobBoxes(view), IsEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelViewTest, BoxesLeaveTheSceneRectangleOfTheFrame)
{
    kelView view;
    view.setAcquisitionImage(frame(64, 48));
    view.setBlobs({blob(100, 100, 500, 500)});
    view.setPhysicalObjects({physicalObject(-100, -100, 50, 50)});
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 64, 48));
}

TEST(kelViewTest, TheObjectsAreNotKept)
{
    kelView view;
    Blob shown = blob(1, 1, 1, 1);
    PhysicalObject thing = physicalObject(1, 1, 1, 1);
    const Image picture = frame(4, 4);
    const Image overlay = mask(4, 4, 255);
    view.setBlobs({shown});
    view.setPhysicalObjects({thing});
    view.setAcquisitionImage(picture);
    view.setSegmentationImage(overlay);
    shown->setBoundingBox2D(cv::Rect(2, 2, 2, 2));
    EXPECT_THAT(blobBoxes(view), ElementsAre(QRectF(1, 1, 1, 1)));
    const QWeakPointer<kelDataBlob> weakBlob = shown;
    const QWeakPointer<kelDataPhysicalObject> weakThing = thing;
    shown.reset();
    thing.reset();
    EXPECT_TRUE(weakBlob.isNull());
    EXPECT_TRUE(weakThing.isNull());
    EXPECT_EQ(picture->getImage().u->refcount, 1);
    EXPECT_EQ(overlay->getImage().u->refcount, 1);
}

TEST(kelViewTest, ALongRunLeavesNoItemsBehind)
{
    kelView view;
    for (int i = 0; i < 200; ++i) {
        view.setAcquisitionImage(frame(16, 16));
        view.setSegmentationImage(i % 3 ? mask(16, 16, 255) : Image(new kelDataImage));
        view.setBlobs({blob(1, 1, 4, 4), blob(2, 2, 4, 4)});
        view.setPhysicalObjects({physicalObject(3, 3, 4, 4)});
    }
    EXPECT_EQ(stacking(view), "ppbbo");
}

TEST(kelViewTest, RemovedRectanglesAreDeleted)
{
    kelView view;
    view.setBlobs({blob(1, 1, 4, 4)});
    QString report;
    // A child dies with its rectangle.
    auto *witness = new WitnessItem(graphicsView(view), &report);
    witness->setParentItem(scene(view)->items(Qt::AscendingOrder).constLast());
    view.setPhysicalObjects({});
    EXPECT_TRUE(report.isEmpty());
    view.setBlobs({});
    EXPECT_EQ(report, "before the widget");
}

// The display image.

TEST(kelViewTest, TheDisplayIsAMatrixOfTheFramesSize)
{
    kelView view;
    view.setAcquisitionImage(frame(640, 480));
    view.updateDisplay();
    const cv::Mat &picture = view.getDisplay()->getImage();
    EXPECT_EQ(picture.rows, 480);
    EXPECT_EQ(picture.cols, 640);
    EXPECT_EQ(picture.type(), CV_8UC4);
    EXPECT_EQ(picture.dims, 2);
    EXPECT_EQ(picture.step[0], 640u * 4);
}

TEST(kelViewTest, TheDisplayHoldsBlueGreenRedAnd255)
{
    for (const int width : {1, 2, 3, 5, 64}) {
        kelView view;
        cv::Mat pixels(7, width, CV_8UC3);
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x)
                pixels.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(3 * x + 1), uchar(5 * y + 2), uchar(x + y));
        view.setAcquisitionImage(image(pixels));
        view.updateDisplay();
        const cv::Mat &picture = view.getDisplay()->getImage();
        ASSERT_EQ(picture.size(), pixels.size());
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x) {
                const uchar *bytes = picture.ptr(y) + 4 * x;
                const cv::Vec3b wanted = pixels.at<cv::Vec3b>(y, x);
                EXPECT_THAT(std::vector<int>(bytes, bytes + 4),
                            ElementsAre(wanted[0], wanted[1], wanted[2], 255))
                    << x << ", " << y << " of width " << width;
            }
    }
}

TEST(kelViewTest, TheWholeSceneIsRendered)
{
    kelView view;
    view.setAcquisitionImage(frame(40, 30, cv::Scalar(10, 20, 30)));
    cv::Mat foreground(30, 40, CV_8UC1, cv::Scalar(0));
    foreground(cv::Rect(30, 20, 10, 10)).setTo(255);
    view.setSegmentationImage(image(foreground));
    view.setBlobs({blob(5, 5, 10, 10)});
    view.setPhysicalObjects({physicalObject(20, 5, 10, 20)});
    view.updateDisplay();
    const cv::Mat &picture = view.getDisplay()->getImage();
    const cv::Vec4b shown(10, 20, 30, 255);
    const cv::Vec4b magenta(255, 0, 255, 255);
    const cv::Vec4b cyan(255, 255, 0, 255);
    EXPECT_EQ(picture.at<cv::Vec4b>(0, 0), shown);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 10), shown) << "boxes are not filled";
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 25), shown);
    EXPECT_EQ(picture.at<cv::Vec4b>(29, 39), black);
    // A line of width 2 along x = 5 covers the columns 4 and 5.
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 3), shown);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 4), magenta);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 5), magenta);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 6), shown);
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 15), magenta) << "the right side";
    EXPECT_EQ(picture.at<cv::Vec4b>(15, 10), magenta) << "the lower side";
    EXPECT_EQ(picture.at<cv::Vec4b>(10, 20), cyan);
    EXPECT_EQ(picture.at<cv::Vec4b>(24, 30), cyan) << "above the mask";
    EXPECT_EQ(transparentPixels(picture), 0);
}

TEST(kelViewTest, TheSizeIsRoundedToTheNearestPixel)
{
    kelView view;
    view.setAcquisitionImage(frame(64, 48));
    const auto sizeOf = [&view](qreal width, qreal height) {
        scene(view)->setSceneRect(0, 0, width, height);
        view.updateDisplay();
        return view.getDisplay()->getImage().size();
    };
    EXPECT_EQ(sizeOf(10.4, 20.6), cv::Size(10, 21));
    EXPECT_EQ(sizeOf(10.5, 19.5), cv::Size(11, 20));
    EXPECT_EQ(sizeOf(12, 7), cv::Size(12, 7));
}

TEST(kelViewTest, TheAspectRatioIsKept)
{
    kelView view;
    cv::Mat pixels(10, 8, CV_8UC3);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 8; ++x)
            pixels.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(10 * x), uchar(20 * y), 0);
    view.setAcquisitionImage(image(pixels));
    // Half a pixel wide, shown in a whole one: stretched to fill it, the picture would show column 0, and
    // twice as high only the rows 0 to 4.
    scene(view)->setSceneRect(0.6, 0, 0.5, 10);
    view.updateDisplay();
    const cv::Mat &picture = view.getDisplay()->getImage();
    ASSERT_EQ(picture.size(), cv::Size(1, 10));
    for (int y = 0; y < 10; ++y)
        EXPECT_EQ(picture.at<cv::Vec4b>(y, 0), cv::Vec4b(10, uchar(20 * y), 0, 255)) << y;
}

TEST(kelViewTest, WithoutAFrameTheDisplayShowsWhatTheSceneHolds)
{
    kelView view;
    view.setSegmentationImage(mask(12, 8, 255));
    view.updateDisplay();
    const cv::Mat &picture = view.getDisplay()->getImage();
    ASSERT_EQ(picture.size(), cv::Size(12, 8));
    EXPECT_EQ(cv::countNonZero(picture.reshape(1) != cv::Mat(8, 12, CV_8UC4, cv::Scalar(black)).reshape(1)),
              0);
}

TEST(kelViewTest, WithoutAnythingToShowTheDisplayIsMadeAndStaysEmpty)
{
    kelView view;
    MessageCapture messages;
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay().isNull());
    EXPECT_TRUE(view.getDisplay()->getImage().empty());
    view.updateDisplay();
    EXPECT_TRUE(view.getDisplay()->getImage().empty());
    EXPECT_TRUE(messages.lines().isEmpty());
    view.setAcquisitionImage(frame(6, 4));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay()->getImage().size(), cv::Size(6, 4));
}

TEST(kelViewTest, WithoutAnythingToShowADisplayKeepsThePictureItHad)
{
    kelView view;
    view.getDisplay() = frame(6, 4);
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay()->getImage().size(), cv::Size(6, 4));
}

TEST(kelViewTest, TheDisplayObjectStaysTheSame)
{
    kelView view;
    view.setAcquisitionImage(frame(6, 4));
    view.updateDisplay();
    const kelDataImage *display = view.getDisplay().data();
    EXPECT_EQ(display->identifier(), "kelDataImage");
    view.setAcquisitionImage(frame(8, 8));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay().data(), display);
    EXPECT_EQ(display->getImage().size(), cv::Size(8, 8));
}

TEST(kelViewTest, GetDisplayGivesThePointerItself)
{
    kelView view;
    EXPECT_EQ(&view.getDisplay(), &view.getDisplay());
    const Image own(new kelDataImage);
    view.getDisplay() = own;
    view.setAcquisitionImage(frame(6, 4));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), own);
    EXPECT_EQ(own->getImage().size(), cv::Size(6, 4));
    view.getDisplay().reset();
    view.updateDisplay();
    ASSERT_FALSE(view.getDisplay().isNull());
    EXPECT_NE(view.getDisplay(), own);
}

TEST(kelViewTest, TheDisplayFollowsOnlyUpdateDisplay)
{
    kelView view;
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(1, 2, 3)));
    view.updateDisplay();
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(4, 5, 6)));
    EXPECT_EQ(view.getDisplay()->getImage().at<cv::Vec4b>(0, 0), cv::Vec4b(1, 2, 3, 255));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay()->getImage().at<cv::Vec4b>(0, 0), cv::Vec4b(4, 5, 6, 255));
}

TEST(kelViewTest, AnOldPictureIsUnaffectedByTheNextUpdate)
{
    kelView view;
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(1, 2, 3)));
    view.updateDisplay();
    const cv::Mat old = view.getDisplay()->getImage();
    const kelDataImage copy(*view.getDisplay());
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(4, 5, 6)));
    view.updateDisplay();
    EXPECT_NE(view.getDisplay()->getImage().data, old.data);
    EXPECT_EQ(old.at<cv::Vec4b>(3, 5), cv::Vec4b(1, 2, 3, 255));
    EXPECT_EQ(copy.getImage().at<cv::Vec4b>(3, 5), cv::Vec4b(1, 2, 3, 255));
}

TEST(kelViewTest, ThePictureOutlivesTheView)
{
    auto view = std::make_unique<kelView>();
    view->setAcquisitionImage(frame(64, 48, cv::Scalar(1, 2, 3)));
    view->updateDisplay();
    const Image display = view->getDisplay();
    const cv::Mat picture = display->getImage();
    ASSERT_NE(picture.u, nullptr) << "the matrix owns its pixels";
    view.reset();
    EXPECT_EQ(display->getImage().at<cv::Vec4b>(47, 63), cv::Vec4b(1, 2, 3, 255));
    EXPECT_EQ(picture.data, display->getImage().data);
    EXPECT_EQ(transparentPixels(picture), 0);
}

TEST(kelViewTest, WhatWasSetStaysUntilItIsReplaced)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 8, cv::Scalar(1, 2, 3)));
    view.setSegmentationImage(mask(8, 8, 0));
    view.setBlobs({blob(1, 1, 2, 2)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    view.updateDisplay();
    view.updateDisplay();
    view.setAcquisitionImage(frame(8, 8, cv::Scalar(4, 5, 6)));
    EXPECT_EQ(stacking(view), "ppbo");
    EXPECT_EQ(maskItem(view)->pixmap().size(), QSize(8, 8));
    EXPECT_TRUE(maskItem(view)->isVisible());
}

TEST(kelViewTest, SettersCanBeCalledAloneAndInAnyOrder)
{
    kelView view;
    view.setPhysicalObjects({physicalObject(4, 4, 4, 4)});
    view.setBlobs({blob(1, 1, 2, 2)});
    view.setSegmentationImage(mask(16, 16, 255));
    view.setAcquisitionImage(frame(16, 16));
    EXPECT_EQ(stacking(view), "ppob");
    EXPECT_EQ(pixel(view, 12, 12), black);
    EXPECT_EQ(pixel(view, 8, 6), cv::Vec4b(255, 255, 0, 255));
}

TEST(kelViewTest, NothingIsSaidWhateverIsSet)
{
    const LogLevel level(0);
    MessageCapture messages;
    OutputCapture output;
    {
        kelView view;
        view.updateDisplay();
        view.setAcquisitionImage(frame(16, 16));
        view.setSegmentationImage(mask(5, 3, 255));
        view.setBlobs({blob(1, 1, 2, 2), Blob(), blob(0, 0, -4, -4)});
        view.setPhysicalObjects({physicalObject(1, 1, 2, 2), PhysicalObject()});
        view.setSegmentationImage(Image(new kelDataImage));
        view.updateDisplay();
        kelView copy(view);
        copy.updateDisplay();
        view.updateDisplay();
    }
    EXPECT_EQ(messages.lines(), QStringList());
    EXPECT_EQ(output.take(), "");
}
