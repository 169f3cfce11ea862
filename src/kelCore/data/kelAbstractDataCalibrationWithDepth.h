#ifndef KELCORE_KELABSTRACTDATACALIBRATIONWITHDEPTH_H
#define KELCORE_KELABSTRACTDATACALIBRATIONWITHDEPTH_H

/// \file
/// The pinhole model of a depth camera, and the floor plane of its scene.

#include <kelCore/data/kelAbstractDataCalibration.h>

#include <string>
#include <vector>

class kelAbstractDataCalibrationWithDepthPrivate;
class kelDataContext;

/// Calibration of a depth camera: a calibration, and a depth map aligned with the image.
///
/// **Depth.** Element (row v, column u) of the map, a 32-bit float, is the depth Z of pixel (u, v) along the
/// optical axis; 0 means none. Units are those of the depth file, which does not state them.
///
/// **Projections.** The class adds a second pair. They go between pixels and the *camera's* frame (X along
/// columns, Y along rows, Z along the optical axis), with fx = K(0,0), cx = K(0,2), fy = K(1,1), cy = K(1,2):
///
///     X = (u - cx) Z / fx,   Y = (v - cy) Z / fy      imageToWorld(pixel), with Z from the map
///     u = fx X / Z + cx,     v = fy Y / Z + cy        worldToImage(point)
///
/// The pair of kelAbstractDataCalibration, between pixels and the *world*, stays beside it:
/// `imageToWorld(pixel, height)`, and `worldToImage(point)` *on a const object*. On an object that is not
/// const, `worldToImage(point)` is the camera's; call `kelAbstractDataCalibration::worldToImage` to have the
/// world's. `compute_3d_height` uses the world's pair.
///
/// **Planes** are four coefficients (a, b, c, d) of a x + b y + c z + d = 0. The operations on planes and
/// vectors use no state of the object; kelPlane.h has them for planes without a vector.
///
///     kelAbstractDataCalibrationWithDepth camera;
///     camera.read("camera.yml");
///     camera.setDepthInformation("depth.raw");
///     cv::Point3d point = camera.imageToWorld(cv::Point2d(320, 240));
///     std::vector<double> floor = camera.computePlaneEquationFromContextualObjects(&scene);
///     double height = camera.computePointDistanceToPlane(point, floor);
class KELCORE_EXPORT kelAbstractDataCalibrationWithDepth : public kelAbstractDataCalibration
{
    Q_OBJECT

public:
    /// A depth map of 480 rows and 640 columns without depth; no names in the list below.
    kelAbstractDataCalibrationWithDepth();
    /// Shares the matrices and the depth map; the list of names starts empty.
    kelAbstractDataCalibrationWithDepth(const kelAbstractDataCalibrationWithDepth &other);
    ~kelAbstractDataCalibrationWithDepth() override;
    /// Calls the virtual `copy` for calibrations, so that the depth map comes along.
    kelAbstractDataCalibrationWithDepth &operator=(const kelAbstractDataCalibrationWithDepth &other);

    kelAbstractDataCalibrationWithDepth *clone() override;
    QString identifier() const override;

    /// Beside the one below, `copy` of any object is the base's, deliberately: through it the depth map is
    /// left out.
    using kelAbstractDataCalibration::copy;
    using kelAbstractDataCalibration::imageToWorld;
    using kelAbstractDataCalibration::worldToImage;

    /// Takes the name and shares the matrices and the depth map; never the list of names. When `other` is of
    /// another kind (a calibration without depth is), nothing is taken and the slicing warning is logged
    /// twice.
    virtual void copy(const kelAbstractDataCalibration &other);

    /// The point that the pixel shows, in the camera's frame and the units of the depth map; (0, 0, 0) where
    /// there is no depth. The pixel must be inside the map, see `depthVal`.
    /// \throws cv::Exception when the intrinsic matrix does not hold doubles or is smaller than 2 x 3.
    virtual cv::Point3d imageToWorld(const cv::Point2d &pixel);

    /// The pixel that shows a point of the camera's frame; (cx, cy) for a point with Z = 0. Throws as the
    /// other.
    virtual cv::Point2d worldToImage(const cv::Point3d &point);

    /// Shares the caller's matrix.
    void setDepthInformation(const cv::Mat &depth);

    /// Loads a raw depth file: two 32-bit integers, H rows and W columns, then H W 32-bit floats row by row,
    /// in the machine's byte order. What follows is ignored.
    ///
    /// The map gets H rows, in a buffer of its own, and keeps its columns: columns from W on keep what they
    /// held, new rows of them have no depth. Elements that a short file leaves out are -1. Nothing is loaded
    /// from a file that is wider than the map, or into a map that does not hold 32-bit floats: give the
    /// object a map of the right width first.
    ///
    /// The line "Depth RAW file read successfully" on standard output is *no* proof of success: it is written
    /// even when there is no such file, which leaves the map as it is.
    ///
    /// Costs little more than reading the file at once; a map of the right size that nobody shares is reused.
    /// Elements that the header claims and the file does not hold cost next to no memory until they are
    /// written to. `kelGeometry::readDepthFile` does the same for a map of the caller's, and says what came
    /// of it.
    /// \throws cv::Exception when H is negative, when the file is too short to hold H and W, and when memory
    /// does not suffice. The map is unchanged then, and the line is not written.
    void setDepthInformation(const QString &fileName);
    const cv::Mat &getDepthInformation() const;

    /// Depth of the pixel in column (int) u and row (int) v. The pixel must be inside the map: this is not
    /// checked. A map that does not hold 32-bit floats has no depth anywhere.
    float depthVal(double u, double v);

    /// Names the context elements to leave out of the plane fit, separated by commas, blanks or both. Each
    /// name leaves out one element, the first that has it; a name listed twice leaves out two.
    void setListContextObjectsForbiddenInPlanComputation(std::string list);
    std::string getListContextObjectsForbiddenInPlanComputation();

    /// Distance |a x + b y + c z + d| / |(a, b, c)|; 0 for a plane of fewer than three coefficients.
    /// \throws std::out_of_range for a plane of exactly three, deliberately.
    double computePointDistanceToPlane(cv::Point3d p, std::vector<double> &plane);
    /// Euclidean norm.
    double vectorMagnitude(cv::Point3d v);
    /// The point of the plane that is nearest to `p`. The plane must have four coefficients.
    cv::Point3d pointProjectionOntoPlane(cv::Point3d p, std::vector<double> &plane);

    /// Fits a plane through the polygon vertices of a scene's elements, whatever their semantic, in the least
    /// squares of distances: its normal is the direction of least scatter about the mean m,
    ///
    ///     S = sum (p - m) (p - m)^T,   S n = smallest eigenvalue x n,   plane = (n, -n . m)
    ///
    /// S is summed up in 32-bit floats. The normal has unit length, and the sign that `cv::eigen` gives it.
    ///
    /// Every element that takes part is written to standard output (`ContextElement::displayObject`).
    ///
    /// \return the plane, which is not kept here; nothing when no element takes part or the context is null.
    /// When the elements have no polygon vertices, d is not a number.
    std::vector<double> computePlaneEquationFromContextualObjects(const kelDataContext *context);

protected:
    explicit kelAbstractDataCalibrationWithDepth(kelAbstractDataCalibrationWithDepthPrivate &dd,
                                                 QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractDataCalibrationWithDepth)
};

#endif
