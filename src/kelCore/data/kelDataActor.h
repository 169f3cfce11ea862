#ifndef KELCORE_KELDATAACTOR_H
#define KELCORE_KELDATAACTOR_H

/// \file
/// A tracked object followed over time.

#include <kelCore/data/BoundingBox3D.h>
#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/Information3D.h>
#include <kelCore/data/SkeletonStructure.h>
#include <kelCore/data/kelAbstractData.h>
#include <kelCore/data/kelDataLinkedPhysicalObject.h>

#include <QSharedPointer>

#include <opencv2/core/types.hpp>

#include <list>
#include <map>
#include <string>
#include <vector>

class kelDataActorPrivate;

/// What a physical object holds for the current frame, and the actor's identity over time: trajectory, speed,
/// reliability, camera, the tracks it was built from and the linked physical objects that make it up. Scene
/// positions and lengths are in the units of the calibration.
///
/// A tracker updates the actor once a frame: `setCurrentPosition`, then `updateTrajectory` with the frame's
/// time stamp. Setters store what they are given.
///
/// **Ownership.** The actor holds its linked physical objects by strong references. Destruction drops them
/// (`releaseTPO`); it does not take them out of their graph: see kelDataLinkedPhysicalObject.
///
/// **Copying.** What a copy carries differs by the way it is made, deliberately:
///
/// |                                        | copy constructor, `clone`  | `copy`, assignment  |
/// | -------------------------------------- | -------------------------- | ------------------- |
/// | `ident`, type, boxes, 3-D information  | yes                        | yes                 |
/// | current position, trajectory, points   | yes                        | yes                 |
/// | skeleton                               | yes                        | kept                |
/// | linked physical objects, `hasSon`      | null, empty, false         | yes, shared         |
/// | speed                                  | 0                          | yes                 |
/// | reliability, camera                    | 0                          | kept                |
/// | track references, `setSync`            | empty, default             | kept                |
/// | specific properties                    | yes                        | kept                |
class KELCORE_EXPORT kelDataActor : public kelAbstractData
{
    Q_OBJECT

public:
    kelDataActor();
    kelDataActor(const kelDataActor &other);
    /// Calls `releaseTPO`.
    ~kelDataActor() override;
    /// Calls the virtual `copy`.
    kelDataActor &operator=(const kelDataActor &other);

    /// Made by the copy constructor; the caller owns it.
    kelDataActor *clone() override;
    /// When `other` is of another kind, the slicing warning is logged twice (once by the base) and nothing of
    /// this class is copied.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// 4294967295 until the actor is identified.
    unsigned int getIdent() const;
    void setIdent(unsigned int ident);
    /// Class of the actor, free text.
    std::string getType() const;
    void setType(std::string type);
    BoundingBox3D getBoundingBox3D() const;
    void setBoundingBox3D(const BoundingBox3D &box);
    Information3D getInformation3D() const;
    void setInformation3D(const Information3D &information);
    /// Image pixels; (-1, -1, 0, 0) until set.
    cv::Rect getBoundingBox2D() const;
    void setBoundingBox2D(const cv::Rect &box);
    /// Position in the scene at the current frame.
    cv::Point3f getCurrentPosition() const;
    void setCurrentPosition(const cv::Point3f &position);

    /// Positions keyed by time stamp; the actor's own map.
    const std::map<CSynchronizer, cv::Point3f> &getTrajectory() const;
    /// Replaces the map by a copy.
    void setTrajectory(const std::map<CSynchronizer, cv::Point3f> &trajectory);
    /// Adds the current position at time `sync`. A position of that time, if there is one, stays.
    void updateTrajectory(const CSynchronizer &sync);
    /// The latest time stamp of the trajectory; without a trajectory, what `setSync` stored.
    CSynchronizer getSync() const;
    /// Shows only while the trajectory is empty.
    void setSync(const CSynchronizer &sync);

    double getSpeed() const;
    void setSpeed(double speed);
    bool hasSon() const;
    void setHasSon(bool hasSon);
    double getReliability() const;
    void setReliability(double reliability);
    /// The camera that sees the actor.
    unsigned int getCameraId() const;
    void setCameraId(unsigned int id);
    /// Identifiers of the tracks that the actor refers to.
    std::vector<unsigned int> getVtRefIds() const;
    void setVtRefIds(std::vector<unsigned int> ids);

    /// The actor's own linked physical object; null until set.
    QSharedPointer<kelDataLinkedPhysicalObject> getLPO() const;
    void setLPO(const QSharedPointer<kelDataLinkedPhysicalObject> &object);
    /// The linked physical objects attached to the actor: a copy of the list, sharing the objects.
    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> getLinkedPhysicalObjectList() const;
    /// The same: in spite of the name a copy, so that changing it does not change the actor.
    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> getRefLPOList();
    /// Replaces the list by a copy.
    void setLPOList(const std::list<QSharedPointer<kelDataLinkedPhysicalObject>> &objects);
    /// Appends to the list, which may hold an object more than once.
    void addLinkedPhysicalObject(QSharedPointer<kelDataLinkedPhysicalObject> object);

    void setSkeleton(const SkeletonStructure &skeleton);
    /// Image position of the skeleton's head; (-1, -1) until set.
    cv::Point getHead2dPosition() const;
    /// Scene position of the skeleton's head.
    cv::Point3f getHead3dPosition() const;

    /// Takes the caller's points without copying them; the caller is left holding the actor's former ones.
    void setPixels(std::list<cv::Point> &pixels);
    void setVoxels(std::list<cv::Point3f> &voxels);
    /// Replaces the contents of `out` by a copy of the actor's points.
    void getPixels(std::list<cv::Point> &out) const;
    void getVoxels(std::list<cv::Point3f> &out) const;

    /// Empties the list of linked physical objects, the pixels, the voxels and the trajectory, in this order.
    /// Everything else stays, the actor's own linked physical object (`getLPO`) included.
    void releaseTPO();

protected:
    explicit kelDataActor(kelDataActorPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataActor)
};

#endif
