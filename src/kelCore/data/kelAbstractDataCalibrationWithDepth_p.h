#ifndef KELCORE_KELABSTRACTDATACALIBRATIONWITHDEPTH_P_H
#define KELCORE_KELABSTRACTDATACALIBRATIONWITHDEPTH_P_H

/// \file
/// State of kelAbstractDataCalibrationWithDepth. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataCalibration_p.h>

class KELCORE_EXPORT kelAbstractDataCalibrationWithDepthPrivate : public kelAbstractDataCalibrationPrivate
{
public:
    kelAbstractDataCalibrationWithDepthPrivate() = default;
    /// The list of names stays behind: a copy fits its planes through everything until told otherwise.
    kelAbstractDataCalibrationWithDepthPrivate(const kelAbstractDataCalibrationWithDepthPrivate &other)
        : kelAbstractDataCalibrationPrivate(other), depthInformation(other.depthInformation)
    { }

    cv::Mat depthInformation = cv::Mat::zeros(480, 640, CV_32F); ///< Row v, column u; 0 means no depth.
    std::string contextObjectsForbidden; ///< Names of elements, between commas and blanks.
};

#endif
