#ifndef KELCORE_KELSCENEPICTURE_H
#define KELCORE_KELSCENEPICTURE_H

/// \file
/// The way of pixels into a scene and out of it.

#include <opencv2/core/mat.hpp>

class QGraphicsPixmapItem;
class QGraphicsScene;
class QPixmap;
class kelDataImage;

namespace kelScenePicture {

/// True when the image holds at least one pixel.
bool hasPixels(const kelDataImage &image);

/// A frame of one channel, grey, of three, in blue, green, red order, or of four, whose last is left out. Of 16
/// bits, 65535 is white; of floats, 0 is black and 1 is white. What lies outside of that is the nearer of the two,
/// and no number is black.
/// \throws cv::Exception for other numbers of channels and other depths than 8 and 16 bits without a sign and float.
QPixmap fromBgr(const cv::Mat &frame);

/// A map of one channel and any depth: its least value black, its greatest white.
QPixmap fromDepth(const cv::Mat &depth);

/// A mask: opaque black where a byte is 255, transparent elsewhere. Each row is taken to start on a 32-bit
/// boundary, whatever the mask's width; nothing is read behind its last byte.
QPixmap fromMask(const cv::Mat &mask);

/// Lets the item show the mask; hides it when the mask has no pixels.
void showMask(QGraphicsPixmapItem &item, const kelDataImage &mask);

/// True when the picture alone decides each pixel of the scene rectangle that nothing is drawn over: opaque, and
/// neither turned nor scaled. False for null.
bool covers(const QGraphicsPixmapItem *picture, const QGraphicsScene &scene);

/// Renders the scene rectangle of `scene`, in its size in whole pixels, for `display`: four channels, in
/// memory order blue, green, red, 255. The picture owns its pixels; one that was taken out of `display`
/// before stays as it is for whoever holds it. Nothing happens when the rectangle is empty.
/// \param covered whether a picture covers the rectangle; what nothing is drawn on is black otherwise.
void render(QGraphicsScene &scene, kelDataImage &display, bool covered);

} // namespace kelScenePicture

#endif
