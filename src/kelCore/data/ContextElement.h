#ifndef KELCORE_CONTEXTELEMENT_H
#define KELCORE_CONTEXTELEMENT_H

/// \file
/// One zone, object or wall of the scene that a camera looks at.

#include <kelCore/kelCoreExport.h>

#include <opencv2/core/types.hpp>

#include <list>
#include <string>

/// A named part of the scene with a shape given by world points.
///
/// Coordinates, heights and radii are in the units of the calibration's world referential, whose Z axis is
/// vertical. Which members hold geometry depends on the semantic and the shape; kelDataContext::read says
/// how. Other texts than the listed ones are kept, and mean no geometry.
struct KELCORE_EXPORT ContextElement
{
    std::string semantic; ///< "zone", "object" or "wall"
    std::string name;
    double height = 0;
    std::string shape; ///< "polygon", "circle" or "cube"
    double radius = 0; ///< of a circle
    cv::Point3d center; ///< of a circle
    std::list<cv::Point3d> polygonVertices;
    int polygonIsClosed = 0; ///< 0: open polyline
    std::list<cv::Point3d> cubeVertices;
    int cubeIsClosed = 0;

    /// Writes the element to standard output, in lines that depend on the shape; numbers have six significant
    /// digits:
    ///
    ///     Semantic: zone
    ///     Name: door
    ///     Shape: polygon
    ///     Height: 0
    ///     isClosed: 1
    ///     No. of Vertices: 1
    ///     Vertices Coordinates:
    ///     x: 1.5 y: -2 z: 0
    ///
    /// A cube is written like a polygon. A circle has, behind its height, the lines "Radius: 5" and
    /// "Center: x: 1 y: 2 z: 0"; any other shape the line "Invalid shape!" and an empty one.
    ///
    /// The text leaves in one piece and is flushed once.
    void displayObject() const;
};

#endif
