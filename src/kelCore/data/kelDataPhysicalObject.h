#ifndef KELCORE_KELDATAPHYSICALOBJECT_H
#define KELCORE_KELDATAPHYSICALOBJECT_H

/// \file
/// One object detected in a frame.

#include <kelCore/data/BoundingBox3D.h>
#include <kelCore/data/Information3D.h>
#include <kelCore/data/SkeletonStructure.h>
#include <kelCore/data/kelAbstractData.h>

#include <opencv2/core/types.hpp>

#include <list>
#include <string>

class kelDataPhysicalObjectPrivate;

/// A person, a group or a thing seen in one frame. Scene positions and lengths are in the units of the
/// calibration.
///
/// The four positions are fields of their own, apart from those inside the 3-D information: setting one never
/// changes the other.
///
/// The copy constructor carries everything. `copy` and assignment carry everything but the skeleton, of which
/// they take the head alone. They also write a line to standard output, always: programs whose output is
/// parsed copy by construction or share.
class KELCORE_EXPORT kelDataPhysicalObject : public kelAbstractData
{
    Q_OBJECT

public:
    kelDataPhysicalObject();
    kelDataPhysicalObject(const kelDataPhysicalObject &other);
    ~kelDataPhysicalObject() override;
    kelDataPhysicalObject &operator=(const kelDataPhysicalObject &other);

    kelDataPhysicalObject *clone() override;
    /// When `other` is of another kind, the slicing warning is logged twice (once by the base) and nothing of
    /// this class is copied.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// -1 until the object is identified.
    int getId() const;
    void setId(int id);

    cv::Point3f getPosition() const;
    void setPosition(const cv::Point3f &position);
    cv::Point3f getCentroidPosition() const;
    void setCentroidPosition(const cv::Point3f &position);
    cv::Point3f getHighestPosition() const;
    void setHighestPosition(const cv::Point3f &position);
    cv::Point3f getLowestPosition() const;
    void setLowestPosition(const cv::Point3f &position);

    /// Image pixels; (-1, -1, 0, 0) until set.
    const cv::Rect &getBoundingBox2D() const;
    void setBoundingBox2D(const cv::Rect &box);
    BoundingBox3D getBoundingBox3D() const;
    void setBoundingBox3D(const BoundingBox3D &box);
    Information3D getInformation3D() const;
    void setInformation3D(const Information3D &information);

    /// Class of the object, free text.
    std::string getType() const;
    void setType(const std::string &type);

    SkeletonStructure getSkeleton() const;
    void setSkeleton(const SkeletonStructure &skeleton);
    /// Image position of the skeleton's head; (-1, -1) until set.
    cv::Point getHead2dPosition() const;
    /// Scene position of the skeleton's head.
    cv::Point3f getHead3dPosition() const;

    /// Takes the caller's points without copying them; the caller is left holding the object's former ones.
    void setPixels(std::list<cv::Point> &pixels);
    void setVoxels(std::list<cv::Point3f> &voxels);
    /// Replaces the contents of `out` by a copy of the object's points.
    void getPixels(std::list<cv::Point> &out) const;
    void getVoxels(std::list<cv::Point3f> &out) const;

protected:
    explicit kelDataPhysicalObject(kelDataPhysicalObjectPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataPhysicalObject)
};

#endif
