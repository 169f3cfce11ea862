#ifndef KELCORE_KELSCENEITEMS_H
#define KELCORE_KELSCENEITEMS_H

/// \file
/// The items of a scene that a view comes back to.

#include <QList>
#include <QPen>
#include <QSharedPointer>

#include <opencv2/core/types.hpp>

#include <memory>
#include <vector>

class QGraphicsItem;
class QGraphicsPixmapItem;
class QGraphicsScene;

/// Makes the items that a view refers to in its fields, and takes them out of the fields when they are
/// deleted, by whomever: an application gets the scene from the view's widget, and may clear it. What a field
/// holds can always be used.
///
/// The scene owns the items. The fields live as long as this object does.
class kelSceneItems : public std::enable_shared_from_this<kelSceneItems>
{
public:
    using Pixmap = QGraphicsPixmapItem *;
    using Boxes = QList<QGraphicsItem *>;

    /// \param pixmaps, boxes the fields.
    kelSceneItems(QGraphicsScene &scene, std::vector<Pixmap *> pixmaps, std::vector<Boxes *> boxes);

    /// What the field holds; a new item, above all others, where it is empty.
    Pixmap &filled(Pixmap &field);
    /// Lets the field hold an item that another view has made, and moves it into the scene. A null item leaves
    /// the field empty.
    void take(Pixmap &field, Pixmap item);
    /// Puts a rectangle for the box of each of `objects`, null pointers aside, in the place of those that the
    /// field holds. One that was moved out of the scene is whoever's has moved it.
    template <class Object>
    void replace(Boxes &field, const QList<QSharedPointer<Object>> &objects, const QPen &pen)
    {
        remove(field);
        for (const QSharedPointer<Object> &object : objects)
            if (object)
                add(field, object->getBoundingBox2D(), pen);
    }

private:
    template <class Item> class Mortal;

    void remove(Boxes &field);
    void add(Boxes &field, const cv::Rect &box, const QPen &pen);
    void forget(const QGraphicsItem *item);

    QGraphicsScene &m_scene;
    std::vector<Pixmap *> m_pixmaps;
    std::vector<Boxes *> m_boxes;
};

#endif
