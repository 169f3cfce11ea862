#ifndef KELCORE_KELABSTRACTDATACALIBRATION_H
#define KELCORE_KELABSTRACTDATACALIBRATION_H

/// \file
/// The pinhole model of one camera, and the way between pixels and world points.

#include <kelCore/data/kelAbstractData.h>

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

class kelAbstractDataCalibrationPrivate;

/// Geometric calibration of a camera.
///
/// **Model.** With K the intrinsic matrix (3 x 4, or 4 x 4 of which the fourth row takes part in nothing) and
/// E the extrinsic matrix (4 x 4, world to camera), P = K E projects the world point (X, Y, Z):
///
///     (r0, r1, r2) = P (X, Y, Z, 1),   (u, v) = (r0 / r2, r1 / r2)
///
/// See R. Hartley and A. Zisserman, *Multiple View Geometry in Computer Vision*, 2nd ed., section 6.1. A
/// pixel (u, v) is (column, row), with the origin at the top left. The world's Z axis is vertical, the ground
/// is Z = 0; lengths are in the units of the calibration. Lens distortion is stored but never applied.
///
/// **Matrices** hold doubles. Setters, getters and copies share their buffers: a later change of the caller's
/// elements is seen here. Nothing is cached; each projection forms P anew, on the stack and without
/// allocating (kelGeometry in kelProjection.h, which also takes matrices that no calibration holds).
///
/// **Bad matrices.** A K that is not 3 x 4 or 4 x 4 doubles, or an E that is not 4 x 4 doubles, makes the
/// projections throw `cv::Exception`, as the matrix product would.
///
///     kelAbstractDataCalibration camera;
///     if (camera.read("camera.yml"))
///         cv::Point3d foot = camera.imageToWorld(cv::Point2d(320, 400), 0);
class KELCORE_EXPORT kelAbstractDataCalibration : public kelAbstractData
{
    Q_OBJECT

public:
    /// Referential "Default"; all three matrices 4 x 4 zeros.
    kelAbstractDataCalibration();
    kelAbstractDataCalibration(const kelAbstractDataCalibration &other);
    ~kelAbstractDataCalibration() override;
    kelAbstractDataCalibration &operator=(const kelAbstractDataCalibration &other);

    kelAbstractDataCalibration *clone() override;
    /// Takes the name and shares the matrices. When `other` is of another kind (a calibration with depth is),
    /// the slicing warning is logged once and neither is touched.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    using kelAbstractData::read;
    /// Loads a calibration file: an XML or YAML document of OpenCV's storage with the keys "referentialName",
    /// "intrinsicMatrix", "extrinsicMatrix" and "distortion".
    ///
    /// The file's extrinsic matrix is the camera's pose with its second and third rows exchanged; what is
    /// stored is the inverse of the pose with them exchanged back. To write a file for a known
    /// world-to-camera matrix E, invert E and exchange rows 1 and 2 of the result. A singular pose gives a
    /// zero matrix.
    ///
    /// A missing name becomes empty, not "Default"; a missing matrix becomes empty.
    ///
    /// \return false, after two lines on standard output, when the file cannot be opened.
    /// \throws cv::Exception when the file is no storage document, and when its extrinsic matrix is not 4 x 4
    /// doubles. The object is unchanged then.
    bool read(const QString &fileName) override;

    void setReferentialName(const QString &name);
    void setIntrinsicMatrix(const cv::Mat &matrix);
    /// Stores a world-to-camera matrix as given; nothing is exchanged or inverted.
    void setExtrinsicMatrix(const cv::Mat &matrix);
    void setDistortionMatrix(const cv::Mat &matrix);
    QString getReferentialName() const;
    const cv::Mat &getIntrinsicMatrix() const;
    const cv::Mat &getExtrinsicMatrix() const;
    const cv::Mat &getDistortionMatrix() const;

    /// P = K E, a new matrix.
    cv::Mat getCalibration() const;

    /// Height measure, at height `height`, of an object that stands at `pixel`.
    ///
    /// The pixel is back-projected to W on the plane Z = `height`; Q = W + 180 n, with n the unit vector of
    /// `direction` (three doubles, X, Y, Z), is projected to q. The result is 180 `height` / |pixel.y - q.y|:
    /// infinite when the segment has no vertical extent in the image. `height` is used twice, deliberately. A
    /// zero direction gives not-a-number, and so does a null pointer.
    virtual double compute_3d_height(cv::Point2i pixel, double height, double *direction) const;

    /// The point (X, Y, `height`) whose projection is `pixel`.
    /// \throws int -1 when the viewing ray is parallel to the plane.
    virtual cv::Point3d imageToWorld(cv::Point2d pixel, double height) const;

    /// Projection of a world point; infinite or not-a-number for a point in the camera's own plane.
    virtual cv::Point2d worldToImage(cv::Point3d point) const;

    /// The camera's centre in the world: the translation column of the inverse of E. An E that is not 4 x 4
    /// doubles throws as in the projections.
    cv::Point3d getPosition() const;

protected:
    explicit kelAbstractDataCalibration(kelAbstractDataCalibrationPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractDataCalibration)
};

#endif
