#ifndef KELCORE_KELDATABLOB_P_H
#define KELCORE_KELDATABLOB_P_H

/// \file
/// State of kelDataBlob. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataBlob.h>

class KELCORE_EXPORT kelDataBlobPrivate : public kelAbstractDataPrivate
{
public:
    cv::Rect boundingBox2D{-1, -1, 0, 0}; ///< Image pixels; the recorded box is an entry of `map`.
};

#endif
