#ifndef KELCORE_KELABSTRACTPROCESSFEETDETECTION_H
#define KELCORE_KELABSTRACTPROCESSFEETDETECTION_H

/// \file
/// Stage interface: finding where people stand and how fast they walk.

#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

#include <opencv2/core/types.hpp>

#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

class kelAbstractProcessFeetDetectionPrivate;

/// Turns actors into legs, feet and speeds.
///
/// Call `setParameterFile` and `init` once; then, per frame, `setActorList`, `computeFeetPositions` and
/// `computeSpeeds`, and ask for the results. Results are keyed by the actor's identifier; points and speeds
/// are in the units of the calibration.
///
/// Every operation has a default that logs a notice at level 1, keeps nothing and gives an empty result. An
/// actor whose feet were not found has no entry in the results.
class KELCORE_EXPORT kelAbstractProcessFeetDetection : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessFeetDetection();
    /// Carries the base alone: there is nothing else.
    kelAbstractProcessFeetDetection(const kelAbstractProcessFeetDetection &other);
    ~kelAbstractProcessFeetDetection() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessFeetDetection &operator=(const kelAbstractProcessFeetDetection &other) = default;

    /// Made by the copy constructor; the caller owns it. A derived stage overrides it, and `identifier`.
    kelAbstractProcessFeetDetection *clone() override;
    /// Copies what the framework copies. Logs the slicing warning when `other` is of another kind.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// Makes the stage ready for the first frame.
    virtual void init();
    /// Reads the stage's parameters.
    virtual void setParameterFile(std::string file);
    /// The actors of the current frame.
    virtual void setActorList(ActorList actors);
    /// The points of each actor's two legs. The lists are the stage's, and last until the next frame.
    virtual std::map<int, std::pair<std::list<cv::Point3f> *, std::list<cv::Point3f> *>> getLegsPoints();
    /// Where each actor's two feet are.
    virtual std::map<int, std::pair<cv::Point3f, cv::Point3f>> getFeetPositions();
    /// How fast each actor walks, in the calibration's units per second.
    virtual std::map<int, double> getSpeed();
    /// Finds the feet of the actors, with the coefficients (a, b, c, d) of the ground plane.
    virtual void computeFeetPositions(std::vector<double> groundPlane);
    /// Finds the speeds of the actors; `elapsed` is the time since the last frame, in seconds.
    virtual void computeSpeeds(float elapsed);

protected:
    explicit kelAbstractProcessFeetDetection(kelAbstractProcessFeetDetectionPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessFeetDetection)
};

#endif
