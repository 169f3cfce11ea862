#ifndef KELCORE_KELABSTRACTPROCESSXMLREADERWRITER_P_H
#define KELCORE_KELABSTRACTPROCESSXMLREADERWRITER_P_H

/// \file
/// State of kelAbstractProcessXMLReaderWriter. Installed for code that derives from it; not part of the
/// stable interface.

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h>
#include <kelCore/process/kelAbstractProcess_p.h>

#include <QDomDocument>

class KELCORE_EXPORT kelAbstractProcessXMLReaderWriterPrivate : public kelAbstractProcessPrivate
{
public:
    kelAbstractProcessXMLReaderWriterPrivate() = default;
    /// Leaves both lists behind.
    kelAbstractProcessXMLReaderWriterPrivate(const kelAbstractProcessXMLReaderWriterPrivate &other)
        : kelAbstractProcessPrivate(other), document(other.document), outputXML(other.outputXML)
    { }

    QDomDocument document; ///< The input; empty when there is none, or it could not be loaded.
    std::string outputXML; ///< A path.
    QList<QSharedPointer<kelDataPhysicalObject>> physicalObjects;
    QList<QSharedPointer<kelDataActor>> actors;
};

#endif
