#ifndef KELCORE_KELABSTRACTDATACALIBRATION_P_H
#define KELCORE_KELABSTRACTDATACALIBRATION_P_H

/// \file
/// State of kelAbstractDataCalibration. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractData_p.h>

class KELCORE_EXPORT kelAbstractDataCalibrationPrivate : public kelAbstractDataPrivate
{
public:
    QString referentialName = QStringLiteral("Default");
    cv::Mat intrinsicMatrix = cv::Mat::zeros(4, 4, CV_64F); ///< K
    cv::Mat extrinsicMatrix = cv::Mat::zeros(4, 4, CV_64F); ///< E, world to camera
    cv::Mat distortionMatrix = cv::Mat::zeros(4, 4, CV_64F); ///< stored, never applied
};

#endif
