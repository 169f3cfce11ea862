#ifndef KELCORE_KELABSTRACTPROCESSXMLREADERWRITER_H
#define KELCORE_KELABSTRACTPROCESSXMLREADERWRITER_H

/// \file
/// Stage interface: reading and writing scene descriptions in XML.

#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

#include <string>

class kelAbstractProcessXMLReaderWriterPrivate;

/// Turns an XML document into physical objects and actors, and these into an XML document.
///
/// To read, call `setInputXML`, then `parsePhysicalObjects` and `parseActors`, and take the lists. To write,
/// call `setOutputXML`, then `writePhysicalObjects` and `writeActors`. The stage loads the document; what its
/// elements mean is the plug-in's to say.
class KELCORE_EXPORT kelAbstractProcessXMLReaderWriter : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessXMLReaderWriter();
    /// Carries the document, whose nodes are shared, and the output path; the copy's lists are empty.
    kelAbstractProcessXMLReaderWriter(const kelAbstractProcessXMLReaderWriter &other);
    ~kelAbstractProcessXMLReaderWriter() override;

    /// Replaces the physical objects by those of the document; false when the document does not hold what it
    /// should, as one that could not be loaded.
    virtual bool parsePhysicalObjects() = 0;
    /// The same for the actors.
    virtual bool parseActors() = 0;
    /// Writes the physical objects to the output document, and leaves the actors that it holds; false when
    /// nothing was written.
    virtual bool writePhysicalObjects() = 0;
    /// The same for the actors: the two may be called in any order, or one alone.
    virtual bool writeActors() = 0;

    /// Loads the document. One that is missing or is not well-formed gives an empty document, and nothing is
    /// reported. Documents loaded before stay with the copies that share them.
    void setInputXML(std::string path);
    /// Path of the output document; empty until set. Nothing is written yet.
    void setOutputXML(std::string path);
    /// A copy of the list, sharing the objects; empty until `parsePhysicalObjects` fills it.
    QList<QSharedPointer<kelDataPhysicalObject>> getPhysicalObjectList();
    /// A copy of the list, sharing the actors; empty until `parseActors` fills it.
    QList<QSharedPointer<kelDataActor>> getActorList();

protected:
    explicit kelAbstractProcessXMLReaderWriter(kelAbstractProcessXMLReaderWriterPrivate &dd,
                                               QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessXMLReaderWriter)
};

#endif
