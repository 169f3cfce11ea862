#ifndef KELCORE_KELSCENEDRAWING_H
#define KELCORE_KELSCENEDRAWING_H

/// \file
/// What the views draw with: colours, pens, texts and polygons.

#include <QColor>
#include <QFont>
#include <QPen>
#include <QPointF>

#include <opencv2/core/types.hpp>

#include <vector>

class QGraphicsScene;
class QString;

namespace kelSceneDrawing {

constexpr Qt::GlobalColor blobColor = Qt::magenta;
constexpr Qt::GlobalColor physicalObjectColor = Qt::cyan;

/// The colours of actors, by their ids.
const std::vector<QColor> &palette();

/// Around boxes and polygons, and along trajectories.
QPen outline(const QColor &color);

QFont verdana(int pointSize, QFont::Weight weight = QFont::Normal);

/// Plain text, whatever it looks like.
void addText(QGraphicsScene &scene, const QString &text, const QFont &font, const QColor &color,
             const QPointF &position);

/// A polygon that shines through; no item for no corners.
void addPolygon(QGraphicsScene &scene, const std::vector<cv::Point> &corners, const QColor &color);

} // namespace kelSceneDrawing

#endif
