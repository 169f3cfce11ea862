#ifndef KELCORE_KELABSTRACTPROCESSDATAWRITER_P_H
#define KELCORE_KELABSTRACTPROCESSDATAWRITER_P_H

/// \file
/// State of kelAbstractProcessDataWriter. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessDataWriterPrivate : public kelAbstractProcessPrivate
{
public:
    QSharedPointer<kelAbstractData> data;
    QByteArray valueText; ///< Keeps the last result of `getDataType` alive.
};

#endif
