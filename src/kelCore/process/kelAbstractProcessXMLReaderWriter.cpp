#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter_p.h>

#include <kelCore/recording/internal/kelDocumentText.h>

#include <QFile>

#include <utility>

kelAbstractProcessXMLReaderWriter::kelAbstractProcessXMLReaderWriter()
    : kelAbstractProcess(*new kelAbstractProcessXMLReaderWriterPrivate)
{ }

kelAbstractProcessXMLReaderWriter::kelAbstractProcessXMLReaderWriter(
    const kelAbstractProcessXMLReaderWriter &other)
    : kelAbstractProcess(*new kelAbstractProcessXMLReaderWriterPrivate(*other.d_func()), other.parent())
{ }

kelAbstractProcessXMLReaderWriter::kelAbstractProcessXMLReaderWriter(
    kelAbstractProcessXMLReaderWriterPrivate &dd, QObject *parent)
    : kelAbstractProcess(dd, parent)
{ }

kelAbstractProcessXMLReaderWriter::~kelAbstractProcessXMLReaderWriter() = default;

void kelAbstractProcessXMLReaderWriter::setInputXML(std::string path)
{
    QFile file(QFile::decodeName(path.c_str()));
    QDomDocument document;
    // The toolkit complains about an empty name, and keeps what it read of a malformed document.
    if (path.empty() || !file.open(QIODevice::ReadOnly) || !kelDataFlow::setContent(document, file.readAll()))
        document = QDomDocument();
    d_func()->document = document;
}

void kelAbstractProcessXMLReaderWriter::setOutputXML(std::string path)
{
    d_func()->outputXML = std::move(path);
}

QList<QSharedPointer<kelDataPhysicalObject>> kelAbstractProcessXMLReaderWriter::getPhysicalObjectList()
{
    return d_func()->physicalObjects;
}

QList<QSharedPointer<kelDataActor>> kelAbstractProcessXMLReaderWriter::getActorList()
{
    return d_func()->actors;
}

const QDomDocument &kelAbstractProcessXMLReaderWriter::getDocument() const { return d_func()->document; }

const std::string &kelAbstractProcessXMLReaderWriter::getOutputXML() const { return d_func()->outputXML; }

void kelAbstractProcessXMLReaderWriter::setPhysicalObjectList(
    QList<QSharedPointer<kelDataPhysicalObject>> objects)
{
    d_func()->physicalObjects = std::move(objects);
}

void kelAbstractProcessXMLReaderWriter::setActorList(QList<QSharedPointer<kelDataActor>> actors)
{
    d_func()->actors = std::move(actors);
}
