#ifndef TESTS_SUPPORT_PLAINVIEW_H
#define TESTS_SUPPORT_PLAINVIEW_H

/// \file
/// What is found in the scene of a kelView.

#include "support/ViewInput.h"

#include <kelCore/view/kelView.h>

#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPen>
#include <QPointer>

#include <string>
#include <vector>

namespace plain {

inline QGraphicsView *graphicsView(kelView &view) { return dynamic_cast<QGraphicsView *>(view.widget()); }

inline QGraphicsScene *scene(kelView &view) { return graphicsView(view)->scene(); }

/// The pixmap items of a scene, from the bottom up.
inline std::vector<QGraphicsPixmapItem *> pixmapItems(kelView &view)
{
    std::vector<QGraphicsPixmapItem *> result;
    for (QGraphicsItem *item : scene(view)->items(Qt::AscendingOrder))
        if (auto *pixmapItem = dynamic_cast<QGraphicsPixmapItem *>(item))
            result.push_back(pixmapItem);
    return result;
}

inline QGraphicsPixmapItem *frameItem(kelView &view) { return pixmapItems(view).at(0); }
inline QGraphicsPixmapItem *maskItem(kelView &view) { return pixmapItems(view).at(1); }

/// The rectangles of a scene drawn in a colour, in the order in which they were added.
inline std::vector<QRectF> boxes(kelView &view, const QColor &color)
{
    std::vector<QRectF> result;
    for (QGraphicsItem *item : scene(view)->items(Qt::AscendingOrder))
        if (const auto *box = dynamic_cast<QGraphicsRectItem *>(item))
            if (box->pen().color() == color)
                result.push_back(box->rect());
    return result;
}

inline std::vector<QRectF> blobBoxes(kelView &view) { return boxes(view, Qt::magenta); }
inline std::vector<QRectF> physicalObjectBoxes(kelView &view) { return boxes(view, Qt::cyan); }

/// One letter for each item of a scene, from the bottom up: p(ixmap), b(lob), o(bject).
inline std::string stacking(kelView &view)
{
    std::string result;
    for (QGraphicsItem *item : scene(view)->items(Qt::AscendingOrder)) {
        const auto *box = dynamic_cast<QGraphicsRectItem *>(item);
        result += !box ? 'p' : box->pen().color() == QColor(Qt::magenta) ? 'b' : 'o';
    }
    return result;
}

/// A row of a mask as it was understood: '#' where it paints black, '.' where it is transparent.
inline std::string maskRow(kelView &view, int row)
{
    const QImage picture = maskItem(view)->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    std::string result;
    for (int x = 0; x < picture.width(); ++x) {
        const QRgb pixel = picture.pixel(x, row);
        result += pixel == 0xff000000 ? '#' : qAlpha(pixel) == 0 ? '.' : '?';
    }
    return result;
}

inline cv::Vec4b pixel(kelView &view, int x, int y)
{
    view.updateDisplay();
    return view.getDisplay()->getImage().at<cv::Vec4b>(y, x);
}

/// The bytes of the display image that differ from 255 in the fourth channel.
inline int transparentPixels(const cv::Mat &picture)
{
    int count = 0;
    for (const cv::Vec4b &bgra : cv::Mat_<cv::Vec4b>(picture))
        count += bgra[3] != 255;
    return count;
}

inline const cv::Vec4b black(0, 0, 0, 255);

/// An item that tells whether the view's widget was still there when the item was deleted.
class WitnessItem : public QGraphicsRectItem
{
public:
    WitnessItem(QPointer<QGraphicsView> view, QString *report) : m_view(view), m_report(report) { }
    ~WitnessItem() override { *m_report = m_view ? "before the widget" : "after the widget"; }

private:
    QPointer<QGraphicsView> m_view;
    QString *m_report;
};

} // namespace plain

#endif
