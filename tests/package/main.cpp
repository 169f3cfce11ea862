/// \file
/// Uses the installed package: a stage of its own, a recording and its replay, a view, an image window. The
/// exit code is the number of expectations that did not hold.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessSegmentation.h>
#include <kelCore/process/kelAbstractProcessSegmentation_p.h>
#include <kelCore/utils/opencvutils.h>
#include <kelCore/view/kelView.h>
#include <nubLog/nubLogger.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QWidget>

#include <opencv2/core.hpp>

#include <cstdio>
#include <cstdlib>

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

/// Everything brighter than half is foreground. Its input is read from the stage's private object.
class BrightSegmentation : public kelAbstractProcessSegmentation
{
public:
    BrightSegmentation() : kelAbstractProcessSegmentation(*new kelAbstractProcessSegmentationPrivate) { }

    bool segment() override
    {
        const auto *d = static_cast<const kelAbstractProcessSegmentationPrivate *>(nub_d.data());
        if (!d->acquisitionImage)
            return false;
        cv::Mat gray, mask;
        cv::extractChannel(d->acquisitionImage->getImage(), gray, 0);
        cv::compare(gray, 127, mask, cv::CMP_GT);
        getSegmentationImage().reset(new kelDataImage);
        getSegmentationImage()->setImage(mask);
        return true;
    }
};

QSharedPointer<kelDataImage> frameWithABrightBox(const cv::Rect &box)
{
    cv::Mat pixels(48, 64, CV_8UC3, cv::Scalar::all(20));
    pixels(box).setTo(cv::Scalar::all(200));
    QSharedPointer<kelDataImage> frame(new kelDataImage);
    frame->setImage(pixels);
    return frame;
}

void checkData()
{
    kelDataBlob blob;
    EXPECT(blob.getBoundingBox2D() == cv::Rect(-1, -1, 0, 0));
    blob.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    const QScopedPointer<kelDataBlob> copy(blob.clone());
    EXPECT(copy->identifier() == QLatin1String("kelDataBlob"));
    EXPECT(copy->getBoundingBox2D() == cv::Rect(1, 2, 3, 4));
    EXPECT(nubLogger::instance().level() == 17);
}

void checkStage(QSharedPointer<kelDataImage> frame, const cv::Rect &box)
{
    BrightSegmentation segmentation;
    EXPECT(!segmentation.segment());
    segmentation.setAcquisitionImage(frame);
    EXPECT(segmentation.segment());
    EXPECT(cv::countNonZero(segmentation.getSegmentationImage()->getImage()) == box.area());
}

void checkRecording(const QRect &box)
{
    QSharedPointer<kelDataBlob> blob(new kelDataBlob);
    blob->setBoundingBox2D_qt(box);
    CSynchronizer stamp;
    stamp.setFrameNumber(7);
    kelAbstractProcessDataFlowWriter writer;
    writer.setFilePath(QFile("dataflow.xml"));
    writer.setSynchronizer(stamp);
    writer.setDataFlow(QList<QSharedPointer<kelAbstractData>>{blob});
    EXPECT(writer.writeDataFlow());

    kelAbstractProcessDataFlowReader reader;
    QList<kelAbstractData *> frame;
    EXPECT(reader.setFile("dataflow.xml"));
    EXPECT(reader.getDataFlow(frame, 7));
    EXPECT(frame.size() == 1);
    qDeleteAll(frame);

    reader.setDir("dataflow.dat");
    const QList<kelAbstractData *> records = reader.getDataFlow();
    EXPECT(records.size() == 1);
    const auto *replayed = records.isEmpty() ? nullptr : qobject_cast<kelDataBlob *>(records.first());
    EXPECT(replayed && replayed->getBoundingBox2D_qt() == box);
    qDeleteAll(records);
}

void checkView(QSharedPointer<kelDataImage> frame)
{
    kelView view;
    view.setAcquisitionImage(frame);
    view.updateDisplay();
    EXPECT(view.widget());
    EXPECT(!view.getDisplay().isNull());
    const cv::Mat shown = view.getDisplay()->getImage();
    EXPECT(shown.size() == frame->getImage().size());
    EXPECT(shown.at<cv::Vec4b>(0, 0) == cv::Vec4b(20, 20, 20, 255));
}

void checkImageWindow(const cv::Mat &image)
{
    OpenCVUtils::showImage(image, QStringLiteral("package"), false);
    bool shown = false;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows)
        shown = shown || (window->isVisible() && window->windowTitle() == QLatin1String("package"));
    EXPECT(shown);
}

} // namespace

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (!std::freopen("/dev/null", "r", stdin))
        return EXIT_FAILURE;
    QApplication application(argc, argv);
    QTemporaryDir folder;
    if (!folder.isValid() || !QDir::setCurrent(folder.path()))
        return EXIT_FAILURE;

    const cv::Rect box(8, 4, 20, 10);
    const QSharedPointer<kelDataImage> frame = frameWithABrightBox(box);
    checkData();
    checkStage(frame, box);
    checkRecording(QRect(8, 4, 20, 10));
    checkView(frame);
    checkImageWindow(frame->getImage());
    if (failures == 0)
        std::puts("the installed package works");
    return failures;
}
