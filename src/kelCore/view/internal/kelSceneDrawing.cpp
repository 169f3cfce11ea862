#include <kelCore/view/internal/kelSceneDrawing.h>

#include <QBrush>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QPolygonF>
#include <QString>

const std::vector<QColor> &kelSceneDrawing::palette()
{
    static const std::vector<QColor> colors = {Qt::cyan,      Qt::magenta,     Qt::yellow,     Qt::green,
                                               Qt::blue,      Qt::red,         Qt::black,      Qt::darkGray,
                                               Qt::darkCyan,  Qt::darkMagenta, Qt::darkYellow, Qt::white,
                                               Qt::darkGreen, Qt::darkBlue,    Qt::darkRed,    Qt::lightGray};
    return colors;
}

QPen kelSceneDrawing::outline(const QColor &color) { return QPen(color, 2); }

QFont kelSceneDrawing::verdana(int pointSize, QFont::Weight weight)
{
    return QFont(QStringLiteral("Verdana"), pointSize, weight);
}

void kelSceneDrawing::addText(QGraphicsScene &scene, const QString &text, const QFont &font,
                              const QColor &color, const QPointF &position)
{
    // The text comes last: it would be laid out anew for each of the others.
    auto *item = new QGraphicsTextItem;
    item->setFont(font);
    item->setDefaultTextColor(color);
    item->setPos(position);
    item->setPlainText(text);
    scene.addItem(item);
}

void kelSceneDrawing::addPolygon(QGraphicsScene &scene, const std::vector<cv::Point> &corners,
                                 const QColor &color)
{
    constexpr int fillingAlpha = 90;
    QPolygonF polygon;
    for (const cv::Point &corner : corners)
        polygon << QPointF(corner.x, corner.y);
    QColor filling = color;
    filling.setAlpha(fillingAlpha);
    if (!polygon.isEmpty())
        scene.addPolygon(polygon, outline(color), filling);
}
