#include <kelCore/view/kelScenePicture_p.h>

#include <opencv2/imgproc.hpp>

#include <QGraphicsScene>
#include <QPainter>
#include <QPixmap>
#include <QVector>

#include <algorithm>
#include <vector>

QPixmap kelScenePicture::fromBgr(const cv::Mat &frame)
{
    cv::Mat rgb;
    cv::cvtColor(frame, rgb, cv::COLOR_BGR2RGB);
    return QPixmap::fromImage(
        QImage(rgb.data, rgb.cols, rgb.rows, static_cast<int>(rgb.step), QImage::Format_RGB888));
}

QPixmap kelScenePicture::fromMask(const cv::Mat &mask)
{
    const cv::Mat bytes = mask.isContinuous() ? mask : mask.clone();
    const size_t wanted = static_cast<size_t>((bytes.cols + 3) / 4 * 4) * static_cast<size_t>(bytes.rows);
    std::vector<uchar> padded(wanted, 0);
    std::copy_n(bytes.data, std::min(wanted, bytes.total() * bytes.elemSize()), padded.begin());

    QImage image(padded.data(), bytes.cols, bytes.rows, QImage::Format_Indexed8);
    QVector<QRgb> colors(256, 0x00000000);
    colors[255] = 0xff000000;
    image.setColorTable(colors);
    return QPixmap::fromImage(image);
}

cv::Mat kelScenePicture::render(QGraphicsScene &scene)
{
    const QRectF rect = scene.sceneRect();
    const int width = qRound(rect.width());
    const int height = qRound(rect.height());
    if (width <= 0 || height <= 0)
        return cv::Mat();
    // The painter draws straight into the matrix. The pixels are not cleared first: a frame covers them all.
    cv::Mat picture(height, width, CV_8UC4);
    QImage image(picture.data, width, height, static_cast<int>(picture.step), QImage::Format_RGB32);
    QPainter painter(&image);
    scene.render(&painter, QRectF(), QRectF(), Qt::KeepAspectRatio);
    return picture;
}
