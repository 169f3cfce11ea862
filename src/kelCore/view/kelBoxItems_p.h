#ifndef KELCORE_KELBOXITEMS_P_H
#define KELCORE_KELBOXITEMS_P_H

/// \file
/// Rectangles around objects. Internal.

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QList>
#include <QPen>
#include <QSharedPointer>

#include <opencv2/core/types.hpp>

namespace kelBoxItems {

/// Replaces the rectangles `items` of `scene` by one for the box of each of `objects`, null pointers aside.
template <class Object>
void replace(QGraphicsScene &scene, QList<QGraphicsItem *> &items,
             const QList<QSharedPointer<Object>> &objects, Qt::GlobalColor color)
{
    for (QGraphicsItem *item : qAsConst(items)) {
        scene.removeItem(item);
        delete item;
    }
    items.clear();
    for (const QSharedPointer<Object> &object : objects) {
        if (!object)
            continue;
        const cv::Rect &box = object->getBoundingBox2D();
        items.append(scene.addRect(box.x, box.y, box.width, box.height, QPen(color, 2)));
    }
}

} // namespace kelBoxItems

#endif
