#ifndef KELCORE_KELSCENEPICTURE_P_H
#define KELCORE_KELSCENEPICTURE_P_H

/// \file
/// The way of pixels into a scene and out of it. Internal.

#include <opencv2/core/mat.hpp>

class QGraphicsScene;
class QPixmap;

namespace kelScenePicture {

/// A frame in blue, green, red order.
QPixmap fromBgr(const cv::Mat &frame);

/// A mask: opaque black where a byte is 255, transparent elsewhere. Each row is taken to start on a 32-bit
/// boundary, whatever the mask's width; nothing is read behind its last byte.
QPixmap fromMask(const cv::Mat &mask);

/// The scene rectangle of `scene`, rendered to its size in whole pixels: four channels, in memory order blue,
/// green, red, 255. The matrix owns its pixels. Empty when the rectangle is.
cv::Mat render(QGraphicsScene &scene);

} // namespace kelScenePicture

#endif
