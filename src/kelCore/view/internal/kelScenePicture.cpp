#include <kelCore/view/internal/kelScenePicture.h>

#include <kelCore/data/kelDataImage.h>
#include <kelCore/geometry/internal/kelSharedMatrix.h>
#include <kelCore/utils/internal/kelValueRange.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <QGraphicsEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QPainter>
#include <QPixmap>
#include <QVector>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>
#include <vector>

namespace {

/// A picture to draw into: the one that the display holds already, unless somebody else holds it too.
cv::Mat pictureFor(const kelDataImage &display, int width, int height)
{
    const cv::Mat &held = display.getImage();
    if (kelIsShared(held) || held.type() != CV_8UC4 || held.size() != cv::Size(width, height))
        return cv::Mat(height, width, CV_8UC4);
    return held;
}

/// 0 to 1 as 0 to 255. `cv::Mat::convertTo` would make black of infinity.
uchar toByte(float value)
{
    if (!(value > 0)) // not-a-number too
        return 0;
    return value < 1 ? static_cast<uchar>(std::lround(value * 255)) : 255;
}

/// The frame in 8 bits; one of a depth that has no scale of its own is left to the colour conversion to refuse.
cv::Mat inBytes(const cv::Mat &frame)
{
    cv::Mat bytes;
    if (frame.depth() == CV_16U) {
        frame.convertTo(bytes, CV_8U, 1.0 / 257); // 257 times a byte is that byte
        return bytes;
    }
    if (frame.depth() != CV_32F)
        return frame;
    bytes.create(frame.size(), CV_8UC(frame.channels()));
    const int count = frame.cols * frame.channels();
    for (int y = 0; y < frame.rows; ++y)
        std::transform(frame.ptr<float>(y), frame.ptr<float>(y) + count, bytes.ptr(y), toByte);
    return bytes;
}

} // namespace

bool kelScenePicture::hasPixels(const kelDataImage &image)
{
    return image.getImage().data && image.getImage().total() > 0;
}

QPixmap kelScenePicture::fromBgr(const cv::Mat &frame)
{
    cv::Mat rgb;
    cv::cvtColor(inBytes(frame), rgb, frame.channels() == 1 ? cv::COLOR_GRAY2RGB : cv::COLOR_BGR2RGB);
    return QPixmap::fromImage(
        QImage(rgb.data, rgb.cols, rgb.rows, static_cast<int>(rgb.step), QImage::Format_RGB888));
}

QPixmap kelScenePicture::fromDepth(const cv::Mat &depth)
{
    // What cv::normalize does, with a faster search for the extremes.
    const kelValueRange range = kelValueRangeOf(depth);
    const double extent = range.max - range.min;
    const double scale = 255 * (extent > DBL_EPSILON ? 1 / extent : 0);
    cv::Mat grey;
    depth.convertTo(grey, CV_8U, scale, -range.min * scale);

    const int width = grey.cols; // a local, or the compiler would read it anew for each pixel
    QImage image(width, grey.rows, QImage::Format_RGB32);
    for (int y = 0; y < grey.rows; ++y) {
        const uchar *in = grey.ptr(y);
        auto *out = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            out[x] = qRgb(in[x], in[x], in[x]);
    }
    return QPixmap::fromImage(std::move(image));
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

void kelScenePicture::showMask(QGraphicsPixmapItem &item, const kelDataImage &mask)
{
    item.setVisible(hasPixels(mask));
    if (hasPixels(mask))
        item.setPixmap(fromMask(mask.getImage()));
}

bool kelScenePicture::covers(const QGraphicsPixmapItem *picture, const QGraphicsScene &scene)
{
    if (!picture || picture->scene() != &scene || picture->parentItem() || !picture->isVisible()
        || picture->opacity() < 1 || picture->graphicsEffect() || picture->pixmap().hasAlpha())
        return false;
    // In steps of whole pixels, or the edge of the picture is mixed with what lies under it.
    const QRectF shown = picture->sceneBoundingRect();
    return picture->sceneTransform().type() <= QTransform::TxTranslate && shown == shown.toRect()
        && scene.sceneRect() == scene.sceneRect().toRect() && shown.contains(scene.sceneRect());
}

void kelScenePicture::render(QGraphicsScene &scene, kelDataImage &display, bool covered)
{
    const QRectF rect = scene.sceneRect();
    const int width = qRound(rect.width());
    const int height = qRound(rect.height());
    if (width <= 0 || height <= 0)
        return;
    // The painter draws straight into the matrix; to clear it first takes time.
    cv::Mat picture = pictureFor(display, width, height);
    if (!covered)
        picture = cv::Scalar(0, 0, 0, 255);
    QImage image(picture.data, width, height, static_cast<int>(picture.step), QImage::Format_RGB32);
    QPainter painter(&image);
    scene.render(&painter, QRectF(), QRectF(), Qt::KeepAspectRatio);
    display.setImage(picture);
}
