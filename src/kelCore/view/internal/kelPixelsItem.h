#ifndef KELCORE_KELPIXELSITEM_H
#define KELCORE_KELPIXELSITEM_H

/// \file
/// The pixels of an actor in a scene.

#include <QGraphicsItem>
#include <QPen>

#include <opencv2/core/types.hpp>

#include <list>
#include <vector>

/// A 2 x 2 ellipse at each of a set of pixels, which is not empty.
///
/// One item for all: fifty thousand ellipse items would take far longer to make than to draw. The picture is
/// the one that an item for each ellipse would give.
class kelPixelsItem : public QGraphicsItem
{
public:
    kelPixelsItem(const std::list<cv::Point> &pixels, const QPen &pen);

    QRectF boundingRect() const override { return m_box; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *) override;

private:
    void stamp(QPainter &painter, const QRect &device) const;

    std::vector<cv::Point> m_pixels;
    QPen m_pen;
    QRectF m_box;
};

#endif
