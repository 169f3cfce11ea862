#ifndef KELCORE_KELABSTRACTPROCESSDATAWRITER_H
#define KELCORE_KELABSTRACTPROCESSDATAWRITER_H

/// \file
/// Stage that records one data object.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QDomElement>
#include <QSharedPointer>

class kelAbstractProcessDataWriterPrivate;

/// Records one data object, as an XML element and as a binary record: its identifier and its map, nothing
/// else.
///
/// The two forms differ deliberately. The binary record holds the whole map. The element holds every entry's
/// key and type, but a text for rectangles only, and that is the text of the object's *first* entry whichever
/// entry is written: boxes are read back from the binary records.
///
/// The binary file is "dataflow.dat" in the working directory; see kelDataFlowRecord for its format.
class KELCORE_EXPORT kelAbstractProcessDataWriter : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessDataWriter();
    /// Shares the data object.
    kelAbstractProcessDataWriter(const kelAbstractProcessDataWriter &other);
    ~kelAbstractProcessDataWriter() override;
    /// Calls the virtual `copy`, which carries the framework's part alone: the object to write stays.
    kelAbstractProcessDataWriter &operator=(const kelAbstractProcessDataWriter &other);

    using kelAbstractProcess::setData;
    /// Keeps the object to write, shared with the caller.
    void setData(const QSharedPointer<kelAbstractData> &data);

    /// Builds the object's "Data" element in `doc`, appends its binary record, and returns the element, which
    /// the caller moves to where it belongs. A failing binary append is not reported here. Without an object
    /// nothing is written and the element is null.
    QDomElement writeData(QDomDocument &doc);

    /// Appends the object's record to the binary file, whole or not at all. False when the file cannot be
    /// written, when there is no object, and when a value's type has no stream operators: a debug line then
    /// names its key and type.
    ///
    /// Several processes may append at once; each holds a shared `flock` on the file meanwhile. A part that a
    /// full disk took is cut off again under an exclusive one, unless somebody has appended behind it.
    bool writeDataBin();

    /// The value text of an entry of type `typeName`: for "QRect" the first entry of `map` as "left top width
    /// height" (all 0 where it is no rectangle), empty otherwise. UTF-8; valid until the next call.
    const char *getDataType(QVariantMap &map, QString &typeName);

protected:
    explicit kelAbstractProcessDataWriter(kelAbstractProcessDataWriterPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessDataWriter)
};

#endif
