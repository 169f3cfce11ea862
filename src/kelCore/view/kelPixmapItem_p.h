#ifndef KELCORE_KELPIXMAPITEM_P_H
#define KELCORE_KELPIXMAPITEM_P_H

/// \file
/// Pixmap items that a scene may delete behind a view's back. Internal.

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>

#include <memory>

/// Refers to a pixmap item of a scene and knows when it has been deleted, by whomever. Copies refer to the
/// same item.
class kelPixmapItem
{
public:
    /// The item, or null when there is none (any more).
    QGraphicsPixmapItem *get() const { return m_life.expired() ? nullptr : m_item; }

    /// The item, made anew and added to `scene` when there is none.
    QGraphicsPixmapItem *in(QGraphicsScene &scene)
    {
        if (!get()) {
            auto *item = new Item;
            m_item = item;
            m_life = item->life;
            scene.addItem(item);
        }
        return m_item;
    }

private:
    struct Item : QGraphicsPixmapItem
    {
        std::shared_ptr<char> life = std::make_shared<char>();
    };

    QGraphicsPixmapItem *m_item = nullptr;
    std::weak_ptr<char> m_life;
};

#endif
