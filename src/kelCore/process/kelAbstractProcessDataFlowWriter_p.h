#ifndef KELCORE_KELABSTRACTPROCESSDATAFLOWWRITER_P_H
#define KELCORE_KELABSTRACTPROCESSDATAFLOWWRITER_P_H

/// \file
/// State of kelAbstractProcessDataFlowWriter. Installed for code that derives from it; not part of the stable
/// interface.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/process/kelAbstractProcess_p.h>

#include <QDomDocument>
#include <QFile>

class KELCORE_EXPORT kelAbstractProcessDataFlowWriterPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessDataFlowWriterPrivate() = default;
    kelAbstractProcessDataFlowWriterPrivate(const kelAbstractProcessDataFlowWriterPrivate &other)
        : kelAbstractProcessPrivate(other), filePath(other.filePath.fileName()), dataFlow(other.dataFlow),
          dataWriter(other.dataWriter), document(other.document), dataWriterOwner(other.dataWriterOwner)
    { }

    QFile filePath; ///< Only its name is used.
    QList<QSharedPointer<kelAbstractData>> dataFlow;
    kelAbstractProcessDataWriter *dataWriter = new kelAbstractProcessDataWriter; ///< Shared with copies.
    QDomDocument document; ///< As it was after the last frame; read anew before the next.

    QSharedPointer<kelAbstractProcessDataWriter> dataWriterOwner{dataWriter}; ///< Of this and its copies.
};

#endif
