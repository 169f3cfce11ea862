/// \file
/// Runs the stage on frames made here and checks what comes out. The exit code is 0 when all of it is right.

#include "FrameDifference.h"

#include <opencv2/core.hpp>

#include <cstdio>

namespace {

int failures = 0;

void expect(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        ++failures;
    }
}
#define EXPECT(condition) expect((condition), #condition)

/// A dark frame with a box, `brightness` brighter in one channel.
QSharedPointer<kelDataImage> frameWithBox(const cv::Rect &box, int brightness)
{
    cv::Mat pixels(48, 64, CV_8UC3, cv::Scalar::all(20));
    pixels(box) += cv::Scalar(0, brightness, 0);
    QSharedPointer<kelDataImage> frame(new kelDataImage);
    frame->setImage(pixels);
    return frame;
}

/// The stage's mask for the next frame; empty when the stage fails.
cv::Mat maskOf(kelAbstractProcessSegmentation &stage, QSharedPointer<kelDataImage> frame)
{
    stage.setAcquisitionImage(frame);
    return stage.segment() ? stage.getSegmentationImage()->getImage() : cv::Mat();
}

void checkMovingBox()
{
    FrameDifference stage;
    EXPECT(!stage.segment());

    // A box of 8 x 6 that goes one column to the right: one column is left, one is entered.
    for (int x = 0; x < 10; ++x) {
        const cv::Mat mask = maskOf(stage, frameWithBox(cv::Rect(x, 4, 8, 6), 100));
        EXPECT(mask.size() == cv::Size(64, 48) && mask.type() == CV_8UC1);
        EXPECT(cv::countNonZero(mask) == (x == 0 ? 0 : 2 * 6));
        EXPECT(x == 0 || cv::countNonZero(mask.col(x - 1) == 255) == 6);
        EXPECT(x == 0 || cv::countNonZero(mask.col(x + 7) == 255) == 6);
    }
}

void checkThreshold()
{
    const cv::Rect box(2, 3, 5, 4);
    FrameDifference stage;
    maskOf(stage, frameWithBox(box, 0));
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(box, 25))) == 0);
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(box, 51))) == box.area());

    EXPECT(stage.setSpecificParameters({{"threshold", 60}}));
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(box, 111))) == 0);
    EXPECT(!stage.setSpecificParameters({{"threshold", 256}}));
    EXPECT(!stage.setSpecificParameters({{"threshold", "much"}}));
    EXPECT(stage.getSpecificParameters() == (QVariantMap{{"threshold", 60}}));
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(box, 50))) == box.area());
}

void checkSharing()
{
    const cv::Rect box(2, 3, 5, 4);
    FrameDifference stage;
    QSharedPointer<kelDataImage> frame = frameWithBox(box, 0);
    maskOf(stage, frame);
    const QSharedPointer<kelDataImage> first = stage.getSegmentationImage();
    cv::Mat(frame->getImage()).setTo(255); // after the stage has seen it
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(box, 90))) == box.area());
    EXPECT(cv::countNonZero(first->getImage()) == 0);
}

void checkCopy()
{
    FrameDifference stage;
    EXPECT(stage.setSpecificParameters({{"threshold", 60}}));
    maskOf(stage, frameWithBox(cv::Rect(2, 3, 5, 4), 0));

    const QScopedPointer<FrameDifference> copy(stage.clone());
    EXPECT(copy->identifier() == QLatin1String("FrameDifference"));
    EXPECT(copy->getSpecificParameters() == stage.getSpecificParameters());
    EXPECT(copy->getSegmentationImage() == stage.getSegmentationImage());
    EXPECT(cv::countNonZero(maskOf(*copy, frameWithBox(cv::Rect(2, 3, 5, 4), 90))) == 0);
    EXPECT(cv::countNonZero(maskOf(*copy, frameWithBox(cv::Rect(2, 3, 5, 4), 30))) == 0);
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(cv::Rect(2, 3, 5, 4), 90))) == 5 * 4);
}

void checkOddFrames()
{
    FrameDifference stage;
    maskOf(stage, frameWithBox(cv::Rect(2, 3, 5, 4), 0));
    QSharedPointer<kelDataImage> frame(new kelDataImage);
    EXPECT(maskOf(stage, frame).empty());
    frame->setImage(cv::Mat(48, 64, CV_16UC1, cv::Scalar::all(0)));
    EXPECT(maskOf(stage, frame).empty());
    EXPECT(cv::countNonZero(maskOf(stage, frameWithBox(cv::Rect(2, 3, 5, 4), 90))) == 5 * 4);

    QSharedPointer<kelDataImage> gray(new kelDataImage);
    gray->setImage(cv::Mat(48, 64, CV_8UC1, cv::Scalar::all(0)));
    EXPECT(cv::countNonZero(maskOf(stage, gray)) == 0);
    EXPECT(!stage.getSegmentationImage()->getImage().empty());
}

} // namespace

int main()
{
    checkMovingBox();
    checkThreshold();
    checkSharing();
    checkCopy();
    checkOddFrames();
    if (failures == 0)
        std::puts("the stage works");
    return failures == 0 ? 0 : 1;
}
