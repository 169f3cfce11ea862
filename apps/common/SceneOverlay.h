#ifndef APPS_COMMON_SCENEOVERLAY_H
#define APPS_COMMON_SCENEOVERLAY_H

/// \file
/// What a calibration and a context say of a scene, drawn over its pictures.

#include <kelCore/data/ContextElement.h>
#include <kelCore/data/kelAbstractDataCalibration.h>

#include <opencv2/core/mat.hpp>

#include <QString>

#include <list>
#include <memory>
#include <optional>

/// Draws a grid on the ground and the context's zones, walls and objects over a picture: that is how a person
/// sees that a calibration is right.
///
/// The grid's lines run along the world's X and Y axes; its spacing is 1, 2 or 5 times a power of ten of the
/// calibration's units, and is written into the picture's corner.
class SceneOverlay
{
public:
    /// Draws nothing.
    SceneOverlay() = default;
    /// \param calibration path of the calibration file; empty for none: nothing is drawn then.
    /// \param context path of the context file; empty for none: the grid alone is drawn then.
    /// \throws Failure when a file cannot be read, or a context comes without a calibration.
    SceneOverlay(const QString &calibration, const QString &context);

    /// Draws over the picture, 8-bit with three or four channels in blue, green, red order.
    void draw(cv::Mat &picture) const;

private:
    std::shared_ptr<const kelAbstractDataCalibration> m_camera;
    std::list<ContextElement> m_elements;
};

/// Reads the calibration file at `path`.
/// \throws Failure when it cannot be read, or its camera cannot project.
kelAbstractDataCalibration readCalibration(const QString &path);

/// The point of the ground that a pixel shows; none for a pixel above the horizon.
std::optional<cv::Point3d> groundPoint(const kelAbstractDataCalibration &camera, const cv::Point2d &pixel);

#endif
