/// \file
/// The composed scene rendered into the display image, beside drawing the same straight onto an image.

#include "Comparison.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelView.h>

#include <QImage>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr int width = 640;
constexpr int height = 480;

void updateDisplay(benchmark::State &state)
{
    cv::Mat frame(height, width, CV_8UC3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            frame.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(x), uchar(y), uchar(x + y));
    const QSharedPointer<kelDataImage> image(new kelDataImage);
    image->setImage(frame);
    QList<QSharedPointer<kelDataBlob>> blobs;
    for (int i = 0; i < 50; ++i) {
        blobs.append(QSharedPointer<kelDataBlob>(new kelDataBlob));
        blobs.last()->setBoundingBox2D(cv::Rect(11 * i, 7 * i, 60, 100));
    }
    kelView view;
    view.setAcquisitionImage(image);
    view.setBlobs(blobs);

    const QPixmap picture = QPixmap::fromImage(
        QImage(frame.data, width, height, static_cast<int>(frame.step), QImage::Format_RGB888).rgbSwapped());
    compare(
        state, 1.3, [&] { return seconds([&] { view.updateDisplay(); }); },
        [&] {
            return seconds([&] {
                QImage target(width, height, QImage::Format_RGB32);
                QPainter painter(&target);
                painter.drawPixmap(0, 0, picture);
                painter.setPen(QPen(Qt::magenta, 2));
                for (const QSharedPointer<kelDataBlob> &blob : qAsConst(blobs)) {
                    const cv::Rect &box = blob->getBoundingBox2D();
                    painter.drawRect(box.x, box.y, box.width, box.height);
                }
            });
        });
}

} // namespace

BENCHMARK(updateDisplay)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(501);
