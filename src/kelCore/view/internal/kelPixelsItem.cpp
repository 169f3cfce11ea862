#include <kelCore/view/internal/kelPixelsItem.h>

#include <QImage>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

QRectF ellipse(const cv::Point &pixel) { return QRectF(pixel.x, pixel.y, 2, 2); }

/// Neither smoothed nor mixed nor scaled, and in steps of whole pixels.
bool paintsWholePixels(const QPainter &painter)
{
    const QTransform &transform = painter.deviceTransform();
    return !painter.testRenderHint(QPainter::Antialiasing)
        && painter.compositionMode() == QPainter::CompositionMode_SourceOver
        && transform.type() <= QTransform::TxTranslate && transform.dx() == std::rint(transform.dx())
        && transform.dy() == std::rint(transform.dy());
}

} // namespace

kelPixelsItem::kelPixelsItem(const std::list<cv::Point> &pixels, const QPen &pen)
    : m_pixels(pixels.begin(), pixels.end()), m_pen(pen)
{
    cv::Point low = pixels.front();
    cv::Point high = low;
    for (const cv::Point &pixel : m_pixels) {
        low = {std::min(low.x, pixel.x), std::min(low.y, pixel.y)};
        high = {std::max(high.x, pixel.x), std::max(high.y, pixel.y)};
    }
    const qreal margin = pen.widthF() / 2;
    m_box = (ellipse(low) | ellipse(high)).adjusted(-margin, -margin, margin, margin);
}

void kelPixelsItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    const auto *image = dynamic_cast<const QImage *>(painter->device());
    if (image && image->format() == QImage::Format_RGB32 && paintsWholePixels(*painter))
        return stamp(*painter, image->rect());
    painter->setPen(m_pen);
    painter->setBrush(Qt::NoBrush);
    for (const cv::Point &pixel : m_pixels)
        painter->drawEllipse(ellipse(pixel));
}

/// Such an ellipse is four pixels: those beside the one in its middle. They are put into a picture of
/// their own, many times as fast as the painter draws ellipses.
/// \param device the pixels of the device, in its own coordinates.
void kelPixelsItem::stamp(QPainter &painter, const QRect &device) const
{
    const QPointF origin = painter.deviceTransform().map(QPointF(0, 0));
    const QRect area = (m_box.translated(origin) & QRectF(device)).toAlignedRect();
    if (area.isEmpty())
        return;
    QImage picture(area.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    auto *const pixels = reinterpret_cast<QRgb *>(picture.bits());
    const int width = picture.width();
    const int height = picture.height();
    const QRgb color = m_pen.color().rgba();
    const QPoint corner = area.topLeft() - origin.toPoint();
    for (const cv::Point &pixel : m_pixels) {
        for (const cv::Point &step : {cv::Point(1, 0), cv::Point(0, 1), cv::Point(2, 1), cv::Point(1, 2)}) {
            const qint64 x = qint64(pixel.x) + step.x - corner.x();
            const qint64 y = qint64(pixel.y) + step.y - corner.y();
            if (x >= 0 && x < width && y >= 0 && y < height)
                pixels[y * width + x] = color;
        }
    }
    painter.drawImage(corner, picture);
}
