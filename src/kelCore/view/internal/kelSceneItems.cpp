#include <kelCore/view/internal/kelSceneItems.h>

#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>

#include <utility>

/// An item that tells of its end. Those who hold it may go before it: it may stand in another scene by then.
template <class Item> class kelSceneItems::Mortal : public Item
{
public:
    using Item::Item;
    ~Mortal() override
    {
        for (const std::weak_ptr<kelSceneItems> &holder : holders)
            if (const std::shared_ptr<kelSceneItems> living = holder.lock())
                living->forget(this);
    }

    std::vector<std::weak_ptr<kelSceneItems>> holders;
};

kelSceneItems::kelSceneItems(QGraphicsScene &scene, std::vector<Pixmap *> pixmaps, std::vector<Boxes *> boxes)
    : m_scene(scene), m_pixmaps(std::move(pixmaps)), m_boxes(std::move(boxes))
{ }

kelSceneItems::Pixmap &kelSceneItems::filled(Pixmap &field)
{
    if (!field)
        take(field, new Mortal<QGraphicsPixmapItem>);
    return field;
}

void kelSceneItems::take(Pixmap &field, Pixmap item)
{
    field = item;
    if (!item)
        return;
    if (auto *mortal = dynamic_cast<Mortal<QGraphicsPixmapItem> *>(item))
        mortal->holders.push_back(weak_from_this());
    if (item->scene() != &m_scene)
        m_scene.addItem(item);
}

void kelSceneItems::remove(Boxes &field)
{
    const Boxes boxes = std::exchange(field, {}); // first, so that none has to be looked for as it goes
    for (QGraphicsItem *box : boxes)
        if (box->scene() == &m_scene)
            delete box;
}

void kelSceneItems::add(Boxes &field, const cv::Rect &box, const QPen &pen)
{
    auto *item = new Mortal<QGraphicsRectItem>(box.x, box.y, box.width, box.height);
    item->setPen(pen);
    item->holders.push_back(weak_from_this());
    field.append(item);
    m_scene.addItem(item);
}

void kelSceneItems::forget(const QGraphicsItem *item)
{
    for (Pixmap *pixmap : m_pixmaps)
        if (*pixmap == item)
            *pixmap = nullptr;
    for (Boxes *boxes : m_boxes)
        boxes->removeOne(const_cast<QGraphicsItem *>(item));
}
