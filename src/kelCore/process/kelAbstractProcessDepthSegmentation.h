#ifndef KELCORE_KELABSTRACTPROCESSDEPTHSEGMENTATION_H
#define KELCORE_KELABSTRACTPROCESSDEPTHSEGMENTATION_H

/// \file
/// Stage interface: finding physical objects with the help of depth.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

#include <string>

class kelAbstractProcessDepthSegmentationPrivate;

/// Turns a colour frame and its depth frame into physical objects.
///
/// Call `setParameterFile`, `setCalibrationWithDepth` and `computeEquationPlan` once; then, per frame,
/// `setColorImg`, `setDepthImg` and `getPhysicalObjs`. `adjustBoundingBox3d` refines objects that the stage
/// or another one found; the background that the stage has learnt can be looked at and saved.
///
/// Every operation has a default that logs a notice at level 1 and does nothing: what goes in is not kept,
/// and what is passed to be filled stays as it is. None reports failure: a stage that cannot work gives no
/// objects.
class KELCORE_EXPORT kelAbstractProcessDepthSegmentation : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessDepthSegmentation();
    /// Carries the base alone: there is nothing else.
    kelAbstractProcessDepthSegmentation(const kelAbstractProcessDepthSegmentation &other);
    ~kelAbstractProcessDepthSegmentation() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessDepthSegmentation &
    operator=(const kelAbstractProcessDepthSegmentation &other) = default;

    /// The frame belongs to the caller; a stage that needs it beyond the call shares its pixels.
    virtual void setColorImg(const kelDataImage &image);
    /// The depth frame of the same moment. Kept like the colour frame.
    virtual void setDepthImg(const kelDataImage &image);
    /// Reads the stage's parameters; files that they name are looked for below `commonPath`.
    virtual void setParameterFile(const std::string &file, std::string commonPath);
    /// The calibration stays the caller's and must live as long as the stage works.
    virtual void setCalibrationWithDepth(kelAbstractDataCalibrationWithDepth *calibration);
    /// Finds the ground plane of the scene with the help of its context, which stays the caller's.
    virtual void computeEquationPlan(const kelDataContext *context);
    /// Replaces the contents of `objects` by the objects of the current frame: clear the list and append to
    /// it.
    virtual void getPhysicalObjs(PhysicalObjs &objects);
    /// Replaces `depth` by the depth map of the background, in the units of the depth frames.
    virtual void getBackgroundDepthMap(cv::Mat &depth);
    /// Fits the 3-D boxes of the objects, in place.
    virtual void adjustBoundingBox3d(PhysicalObjs &objects);
    /// Writes the background to a file, in the stage's own format.
    virtual void saveBackground(const std::string &file);

protected:
    explicit kelAbstractProcessDepthSegmentation(kelAbstractProcessDepthSegmentationPrivate &dd,
                                                 QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessDepthSegmentation)
};

#endif
