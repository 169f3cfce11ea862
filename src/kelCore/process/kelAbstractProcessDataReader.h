#ifndef KELCORE_KELABSTRACTPROCESSDATAREADER_H
#define KELCORE_KELABSTRACTPROCESSDATAREADER_H

/// \file
/// Stage that rebuilds one recorded data object.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcess.h>

class QDataStream;
class QDomElement;
class kelAbstractProcessDataReaderPrivate;

/// Rebuilds a data object from either of the forms that kelAbstractProcessDataWriter writes. Blobs and images
/// are rebuilt, every other type gives null. The caller owns the result.
class KELCORE_EXPORT kelAbstractProcessDataReader : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessDataReader();
    kelAbstractProcessDataReader(const kelAbstractProcessDataReader &other);
    ~kelAbstractProcessDataReader() override;
    /// Calls the virtual `copy`, which carries the framework's part.
    kelAbstractProcessDataReader &operator=(const kelAbstractProcessDataReader &other);

    /// Reads one binary record, in stream version 12 whatever version `in` is set to; `in` is left behind the
    /// record. The object carries the record's whole map. A record that is cut off leaves `in` in its error
    /// state and the object filled as far as it was read. An exception of an application's stream operator
    /// passes; `in` has its version again.
    kelAbstractData *readData(QDataStream &in);

    /// Rebuilds an object from a "Data" element: an image without its entries, or a blob with its first entry
    /// alone.
    ///
    /// The four numbers of that entry's value are taken as left, top, *right* and *bottom*, where the writer
    /// wrote width and height: deliberate, so a rectangle survives this way only when its left and top are 1.
    /// Missing numbers count as 0, a missing key as "noKey".
    kelAbstractData *readData(const QDomElement &element);

protected:
    explicit kelAbstractProcessDataReader(kelAbstractProcessDataReaderPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessDataReader)
};

#endif
