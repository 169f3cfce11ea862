#ifndef APPS_COMMON_SCENEOVERLAY_H
#define APPS_COMMON_SCENEOVERLAY_H

/// \file
/// A scene drawn over its pictures.

#include <opencv2/core/mat.hpp>

struct Scene;

/// Draws a grid on the ground and the zones, walls and objects of the scene over a picture, 8-bit with three
/// or four channels in blue, green, red order: that is how a person sees that a calibration is right. Nothing
/// is drawn where the camera is not known.
///
/// The grid's lines run along the world's X and Y axes; its spacing is 1, 2 or 5 times a power of ten of the
/// calibration's units, and is written into the picture's corner.
void drawScene(cv::Mat &picture, const Scene &scene);

#endif
