#ifndef APPS_COMMON_SCENE_H
#define APPS_COMMON_SCENE_H

/// \file
/// What a calibration and a context file say of a scene.

#include <kelCore/data/ContextElement.h>
#include <kelCore/data/kelAbstractDataCalibration.h>

#include <opencv2/core/types.hpp>

#include <QString>

#include <list>
#include <memory>
#include <optional>

/// The camera that looks at a scene, and the zones, walls and objects in it.
struct Scene
{
    /// Nothing is known.
    Scene() = default;
    /// \param calibration path of the calibration file; empty for none.
    /// \param context path of the context file; empty for none.
    /// \throws Failure when a file cannot be read, or a context comes without a calibration.
    Scene(const QString &calibration, const QString &context);

    std::shared_ptr<const kelAbstractDataCalibration> camera; ///< null when it is not known
    std::list<ContextElement> elements;
};

/// Reads the calibration file at `path`.
/// \throws Failure when it cannot be read, or its camera cannot project.
kelAbstractDataCalibration readCalibration(const QString &path);

/// The point of the ground that a pixel shows; none for a pixel above the horizon.
std::optional<cv::Point3d> groundPoint(const kelAbstractDataCalibration &camera, const cv::Point2d &pixel);

/// The point of the ground on which what a box encloses stands: the one that the middle of its lower edge
/// shows.
std::optional<cv::Point3d> footPoint(const kelAbstractDataCalibration &camera, const cv::Rect &box);

/// Whether a camera of that projection matrix looks towards the point.
bool isInFront(const cv::Mat &projection, const cv::Point3d &point);

#endif
