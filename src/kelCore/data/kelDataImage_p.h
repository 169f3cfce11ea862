#ifndef KELCORE_KELDATAIMAGE_P_H
#define KELCORE_KELDATAIMAGE_P_H

/// \file
/// State of kelDataImage. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataImage.h>

class KELCORE_EXPORT kelDataImagePrivate : public kelAbstractDataPrivate
{
public:
    cv::Mat image;
};

#endif
