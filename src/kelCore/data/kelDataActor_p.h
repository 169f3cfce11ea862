#ifndef KELCORE_KELDATAACTOR_P_H
#define KELCORE_KELDATAACTOR_P_H

/// \file
/// State of kelDataActor. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataActor.h>

class KELCORE_EXPORT kelDataActorPrivate : public kelAbstractDataPrivate
{
public:
    kelDataActorPrivate() = default;
    /// What ties the actor to its tracks stays behind (links, references, time stamp), and so do speed,
    /// reliability and camera.
    kelDataActorPrivate(const kelDataActorPrivate &other)
        : kelAbstractDataPrivate(other), ident(other.ident), type(other.type),
          boundingBox3D(other.boundingBox3D), information3D(other.information3D),
          boundingBox2D(other.boundingBox2D), currentPosition(other.currentPosition),
          trajectory(other.trajectory), skeleton(other.skeleton), pixels(other.pixels), voxels(other.voxels)
    { }

    quint32 ident = 0xffffffff; ///< All bits set: not yet identified.
    std::string type;
    BoundingBox3D boundingBox3D;
    Information3D information3D;
    cv::Rect boundingBox2D{-1, -1, 0, 0}; ///< Image pixels.
    cv::Point3f currentPosition;
    std::map<CSynchronizer, cv::Point3f> trajectory;
    SkeletonStructure skeleton;
    std::list<cv::Point> pixels;
    std::list<cv::Point3f> voxels;
    QSharedPointer<kelDataLinkedPhysicalObject> LPO;
    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> linkedPhysicalObjects;
    bool hasSon = false;
    double speed = 0;
    double reliability = 0;
    quint32 cameraId = 0;
    std::vector<unsigned int> VtRefIds;
    CSynchronizer sync; ///< Counts only while the trajectory is empty.
};

#endif
