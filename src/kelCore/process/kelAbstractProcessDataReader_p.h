#ifndef KELCORE_KELABSTRACTPROCESSDATAREADER_P_H
#define KELCORE_KELABSTRACTPROCESSDATAREADER_P_H

/// \file
/// State of kelAbstractProcessDataReader. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcess_p.h>

class KELCORE_EXPORT kelAbstractProcessDataReaderPrivate : public kelAbstractProcessPrivate
{ };

#endif
