#ifndef KELCORE_KELDATAPHYSICALOBJECT_P_H
#define KELCORE_KELDATAPHYSICALOBJECT_P_H

/// \file
/// State of kelDataPhysicalObject. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataPhysicalObject.h>

class KELCORE_EXPORT kelDataPhysicalObjectPrivate : public kelAbstractDataPrivate
{
public:
    int id = -1; ///< -1: not yet identified.
    cv::Point3f position;
    cv::Point3f centroidPosition;
    cv::Point3f highestPosition;
    cv::Point3f lowestPosition;
    cv::Rect boundingBox2D{-1, -1, 0, 0}; ///< Image pixels.
    BoundingBox3D boundingBox3D;
    Information3D information3D;
    std::string type;
    SkeletonStructure skeleton;
    std::list<cv::Point> pixels;
    std::list<cv::Point3f> voxels;
};

#endif
