#ifndef KELCORE_KELABSTRACTPROCESSDATAFLOWREADER_P_H
#define KELCORE_KELABSTRACTPROCESSDATAFLOWREADER_P_H

/// \file
/// State of kelAbstractProcessDataFlowReader. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/process/kelAbstractProcessDataReader.h>
#include <kelCore/process/kelAbstractProcess_p.h>

#include <QFile>

class KELCORE_EXPORT kelAbstractProcessDataFlowReaderPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessDataFlowReaderPrivate() = default;
    /// Files and decoder stay behind.
    kelAbstractProcessDataFlowReaderPrivate(const kelAbstractProcessDataFlowReaderPrivate &other)
        : kelAbstractProcessPrivate(other)
    { }
    kelAbstractProcessDataFlowReaderPrivate &
    operator=(const kelAbstractProcessDataFlowReaderPrivate &) = delete;
    ~kelAbstractProcessDataFlowReaderPrivate() override { delete dataReader; }

    QFile file; ///< Only its name is used.
    kelAbstractProcessDataReader *dataReader = new kelAbstractProcessDataReader; ///< Owned; each copy's own.
    QString dir;
};

#endif
