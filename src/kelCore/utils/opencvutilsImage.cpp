#include <kelCore/utils/opencvutils.h>

#include <kelCore/utils/internal/kelHighGui.h>
#include <kelCore/utils/internal/kelValueRange.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace OpenCVUtils {

void cvtGray(cv::Mat const &source, cv::Mat &destination)
{
    if (source.channels() == 3)
        cv::cvtColor(source, destination, cv::COLOR_BGR2GRAY);
    else if (source.channels() == 1)
        destination = source;
    else
        qFatal("Invalid channel count");
}

void cvtUChar(cv::Mat const &source, cv::Mat &destination)
{
    if (source.depth() == CV_8U) {
        destination = source;
        return;
    }
    const kelValueRange range = kelValueRangeOf(source);
    const double extent = range.max - range.min;
    if (extent == 0) {
        destination = cv::Mat(source.rows, source.cols, CV_8UC1,
                              cv::Scalar(std::clamp((range.min + range.max) * 0.5, 0.0, 255.0)));
        return;
    }
    const double alpha = 255 / extent;
    cv::convertScaleAbs(source, destination, alpha, -range.min * alpha);
}

void showImage(cv::Mat const &image, QString const &title, bool wait)
{
    if (image.empty()) {
        qWarning("OpenCVUtils::showImage null image.");
        return;
    }
    const kelHighGui gui = kelHighGui::find();
    if (!gui.imshow) {
        qWarning("OpenCVUtils::showImage needs a QApplication, and its thread.");
        return;
    }
    cv::Mat shown;
    cvtUChar(image, shown);
    gui.imshow(title.toStdString(), shown);
    gui.waitKey(wait ? -1 : 1);
}

} // namespace OpenCVUtils
