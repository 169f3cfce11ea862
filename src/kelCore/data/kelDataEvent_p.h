#ifndef KELCORE_KELDATAEVENT_P_H
#define KELCORE_KELDATAEVENT_P_H

/// \file
/// State of kelDataEvent. Installed for code that derives from it; not part of the stable interface.

#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataEvent.h>

class KELCORE_EXPORT kelDataEventPrivate : public kelAbstractDataPrivate
{
public:
    std::string SEDAlarmLevel;
    CSynchronizer SEDBegin;
    double SEDConfidence = 0;
    double SEDDuration = 0;
    CSynchronizer SEDEnd;
    quint32 SEDId = 0;
    double SEDLatency = 0;
    std::string SEDName;
    std::string SEDType;
    qint32 involvedActorId = -1;
};

#endif
