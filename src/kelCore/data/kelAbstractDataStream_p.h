#ifndef KELCORE_KELABSTRACTDATASTREAM_P_H
#define KELCORE_KELABSTRACTDATASTREAM_P_H

/// \file
/// State of kelAbstractDataStream. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractDataStream.h>
#include <nubCore/nubAbstractData_p.h>

class KELCORE_EXPORT kelAbstractDataStreamPrivate : public nubAbstractDataPrivate
{
public:
    QUrl url;
    QString device = QStringLiteral("Default");
    QString streamName = QStringLiteral("Default");
    kelAbstractDataCalibration cameraCalibration;
};

#endif
