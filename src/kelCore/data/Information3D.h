#ifndef KELCORE_INFORMATION3D_H
#define KELCORE_INFORMATION3D_H

/// \file
/// The 3-D measurements of an object.

#include <opencv2/core/types.hpp>

/// Extent and characteristic points of an object, in the units of the calibration. Plain values, all 0 at
/// first, stored as given.
class Information3D
{
public:
    void setHeight(float value) { height = value; }
    void setWidth(float value) { width = value; }
    void setDepth(float value) { depth = value; }
    void setPosition(cv::Point3f point) { position = point; }
    void setHighestPosition(cv::Point3f point) { highestPosition = point; }
    void setLowestPosition(cv::Point3f point) { lowestPosition = point; }
    void setCentroidPosition(cv::Point3f point) { centroidPosition = point; }

    float getHeight() const { return height; }
    float getWidth() const { return width; }
    float getDepth() const { return depth; }
    cv::Point3f getPosition() const { return position; }
    cv::Point3f getHighestPosition() const { return highestPosition; }
    cv::Point3f getLowestPosition() const { return lowestPosition; }
    cv::Point3f getCentroidPosition() const { return centroidPosition; }

private:
    float height = 0;
    float width = 0;
    float depth = 0;
    cv::Point3f position; ///< reference position
    cv::Point3f highestPosition;
    cv::Point3f lowestPosition;
    cv::Point3f centroidPosition;
};

#endif
