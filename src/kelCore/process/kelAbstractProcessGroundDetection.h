#ifndef KELCORE_KELABSTRACTPROCESSGROUNDDETECTION_H
#define KELCORE_KELABSTRACTPROCESSGROUNDDETECTION_H

/// \file
/// Stage interface: finding the ground plane of a scene.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <list>
#include <string>
#include <vector>

class kelAbstractProcessGroundDetectionPrivate;

/// Turns a depth map into the ground plane, a x + b y + c z + d = 0, in the units of the calibration.
///
/// Call `setParameterFile` and `setCalibrationWithDepth` once, then `computeGroundPlaneFromDepthMap`, and ask
/// for the plane, as coefficients (a, b, c, d) or as points that lie on it. A plane that is shifted is
/// parallel to the ground, at the given height above it: what stands on the ground is searched above it.
///
/// Every operation has a default that logs a notice at level 1, keeps nothing and gives an empty result. An
/// empty result is also what a stage gives that has found no plane.
class KELCORE_EXPORT kelAbstractProcessGroundDetection : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessGroundDetection();
    /// Carries the base alone: there is nothing else.
    kelAbstractProcessGroundDetection(const kelAbstractProcessGroundDetection &other);
    ~kelAbstractProcessGroundDetection() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessGroundDetection &operator=(const kelAbstractProcessGroundDetection &other) = default;

    /// Made by the copy constructor; the caller owns it. A derived stage overrides it, and `identifier`.
    kelAbstractProcessGroundDetection *clone() override;
    /// Copies what the framework copies. Logs the slicing warning when `other` is of another kind.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// Reads the stage's parameters.
    virtual void setParameterFile(std::string file);
    /// Finds the plane in a depth map, whose pixels are shared.
    virtual void computeGroundPlaneFromDepthMap(cv::Mat depth);
    /// The stage gets a calibration of its own, which shares the caller's matrices and depth map.
    virtual void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth calibration);
    /// (a, b, c, d).
    virtual std::vector<double> getGroundPlaneEquationCoef();
    /// Points on the plane.
    virtual std::list<cv::Point3f> getGroundPlanePoints();
    /// The two for the plane `height` above the ground.
    virtual std::vector<double> getShiftedGroundPlaneEquationCoef(float height);
    virtual std::list<cv::Point3f> getShiftedGroundPlanePoints(float height);

protected:
    explicit kelAbstractProcessGroundDetection(kelAbstractProcessGroundDetectionPrivate &dd,
                                               QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessGroundDetection)
};

#endif
