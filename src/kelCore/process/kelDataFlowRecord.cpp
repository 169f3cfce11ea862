#include <kelCore/process/kelDataFlowRecord.h>

#include <kelCore/process/kelVariant_p.h>

#include <QDataStream>
#include <QIODevice>
#include <QMetaType>
#include <QRect>
#include <QVariant>
#include <QtEndian>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace {

/// Sets a stream to the version of the recording for as long as it lives.
class RecordStream
{
public:
    explicit RecordStream(QDataStream &stream) : m_stream(stream), m_version(stream.version())
    {
        stream.setVersion(QDataStream::Qt_4_8); // version 12
    }
    ~RecordStream() { m_stream.setVersion(m_version); }
    Q_DISABLE_COPY(RecordStream)

private:
    QDataStream &m_stream;
    int m_version;
};

/// Writes a record's values. The toolkit's own map operator is not used: its order of keys changed with Qt 6,
/// and it writes nothing at all for a value whose type has no stream operators. Values of the common types
/// are put down straight away: the toolkit's stream costs as much as appending the record to a file.
class Encoder
{
public:
    Encoder() { m_bytes.reserve(256); }

    void writeString(const QString &text)
    {
        if (text.isNull())
            return writeInt(quint32(0xffffffff));
        writeInt(static_cast<quint32>(text.size() * 2));
        const auto at = m_bytes.size();
        m_bytes.resize(at + text.size() * 2);
        qToBigEndian<quint16>(text.constData(), text.size(), m_bytes.data() + at);
    }

    bool writeMap(const QVariantMap &map)
    {
        writeInt(static_cast<quint32>(map.size()));
        for (auto it = map.cend(); it != map.cbegin();) {
            --it;
            writeString(it.key());
            if (!writeValue(it.key(), it.value()))
                return false;
        }
        return true;
    }

    const QByteArray &bytes() const { return m_bytes; }
    const QString &problem() const { return m_problem; }

private:
    template <class Integer> void writeInt(Integer value)
    {
        char bytes[sizeof value];
        qToBigEndian(value, bytes);
        m_bytes.append(bytes, sizeof value);
    }

    bool writeValue(const QString &key, const QVariant &value)
    {
        switch (value.userType()) {
        case QMetaType::QVariantMap:
            writeHeader(value);
            return writeMap(value.toMap());
        case QMetaType::QVariantHash: {
            writeHeader(value);
            QVariantMap sorted;
            const QVariantHash hash = value.toHash();
            for (auto it = hash.cbegin(); it != hash.cend(); ++it)
                sorted.insert(it.key(), it.value());
            return writeMap(sorted);
        }
        case QMetaType::QVariantList: {
            writeHeader(value);
            const QVariantList list = value.toList();
            writeInt(static_cast<quint32>(list.size()));
            for (const QVariant &element : list)
                if (!writeValue(key, element))
                    return false;
            return true;
        }
        }
        if (!value.isNull() && writeCommonValue(value))
            return true;
        if (!kelVariant::hasStreamOperators(value)) {
            m_problem =
                QStringLiteral("entry \"%1\" of type %2 is not recorded: the type has no stream operators")
                    .arg(key, QString::fromLatin1(value.typeName()));
            return false;
        }
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        const RecordStream versioned(out);
        out << value;
        m_bytes.append(bytes);
        return true;
    }

    /// False, with nothing written, for a value of another type.
    bool writeCommonValue(const QVariant &value)
    {
        switch (value.userType()) {
        case QMetaType::Int:
            writeHeader(value);
            writeInt(value.toInt());
            return true;
        case QMetaType::Double: {
            writeHeader(value);
            const double number = value.toDouble();
            quint64 bits;
            std::memcpy(&bits, &number, sizeof bits);
            writeInt(bits);
            return true;
        }
        case QMetaType::QString:
            writeHeader(value);
            writeString(value.toString());
            return true;
        case QMetaType::QRect: {
            writeHeader(value);
            const QRect box = value.toRect();
            for (const int corner : {box.left(), box.top(), box.right(), box.bottom()})
                writeInt(corner);
            return true;
        }
        default:
            return false;
        }
    }

    void writeHeader(const QVariant &value)
    {
        writeInt(static_cast<quint32>(value.userType()));
        writeInt(static_cast<qint8>(value.isNull()));
    }

    QByteArray m_bytes;
    QString m_problem;
};

/// Decodes records of the common value types straight from memory. Anything else, and anything that is cut
/// off, is left to the toolkit's stream: `decode` then gives 0.
class Decoder
{
public:
    Decoder(const char *data, qint64 size) : m_begin(data), m_at(data), m_end(data + size) { }

    qint64 decode(kelDataFlowRecord &record)
    {
        quint32 count = 0;
        if (!readString(record.dataType) || !readInt(count))
            return 0;
        // Records of a run mostly have the keys of the one before: its strings are used again, not built
        // again.
        const QVariantMap previous = std::move(record.properties);
        record.properties = QVariantMap();
        auto old = previous.cend();
        for (quint32 i = 0; i < count; ++i) {
            QString key = old != previous.cbegin() ? (--old).key() : QString();
            if (!readString(key)
                || !readValue(*record.properties.insert(record.properties.cbegin(), key, QVariant())))
                return 0;
        }
        return m_at - m_begin;
    }

private:
    qint64 left() const { return m_end - m_at; }

    template <class Integer> bool readInt(Integer &value)
    {
        if (left() < qint64(sizeof(Integer)))
            return false;
        value = qFromBigEndian<Integer>(m_at);
        m_at += sizeof(Integer);
        return true;
    }

    /// Leaves `text` as it is when it already holds what is read.
    bool readString(QString &text)
    {
        quint32 bytes = 0;
        if (!readInt(bytes))
            return false;
        if (bytes == 0xffffffff) {
            text = QString();
            return true;
        }
        if (bytes % 2 != 0 || left() < qint64(bytes))
            return false;
        const int length = static_cast<int>(bytes / 2);
        const char *characters = m_at;
        m_at += bytes;
        if (!text.isNull() && text.size() == length) {
            const QChar *old = text.constData();
            int difference = 0;
            for (int i = 0; i < length; ++i)
                difference |= old[i].unicode() ^ qFromBigEndian<quint16>(characters + 2 * i);
            if (difference == 0)
                return true;
        }
        text = QString(length, Qt::Uninitialized);
        qFromBigEndian<quint16>(characters, length, text.data());
        return true;
    }

    bool readValue(QVariant &value)
    {
        quint32 type = 0;
        qint8 null = 0;
        if (!readInt(type) || !readInt(null) || null)
            return false;
        switch (type) {
        case QMetaType::Int: {
            qint32 number = 0;
            if (!readInt(number))
                return false;
            value = number;
            return true;
        }
        case QMetaType::Double: {
            quint64 bits = 0;
            if (!readInt(bits))
                return false;
            double number;
            std::memcpy(&number, &bits, sizeof number);
            value = number;
            return true;
        }
        case QMetaType::QString: {
            QString text;
            if (!readString(text))
                return false;
            value = text;
            return true;
        }
        case QMetaType::QRect: {
            qint32 left = 0, top = 0, right = 0, bottom = 0;
            if (!readInt(left) || !readInt(top) || !readInt(right) || !readInt(bottom))
                return false;
            value = QRect(QPoint(left, top), QPoint(right, bottom));
            return true;
        }
        default:
            return false;
        }
    }

    const char *m_begin;
    const char *m_at;
    const char *m_end;
};

/// Reads a record's values from a stream. Containers are taken apart here: the toolkit would take the memory
/// for as many elements, and the stack for as many levels, as corrupt bytes claim to hold.
class StreamReader
{
public:
    explicit StreamReader(QDataStream &in) : m_in(in) { }

    /// What cannot be read whole is left out.
    void readMap(QVariantMap &map)
    {
        map.clear();
        quint32 count = 0;
        m_in >> count;
        for (quint32 i = 0; i < count && ok(); ++i) {
            QString key;
            m_in >> key;
            const QVariant value = readValue();
            if (ok())
                map.insert(key, value);
        }
    }

private:
    bool ok() const { return m_in.status() == QDataStream::Ok; }

    QVariant readValue()
    {
        const QByteArray header = m_in.device() ? m_in.device()->peek(headerSize) : QByteArray();
        const bool bigEndian = m_in.byteOrder() == QDataStream::BigEndian;
        const quint32 type = header.size() < headerSize ? 0
            : bigEndian                                 ? qFromBigEndian<quint32>(header.constData())
                                                        : qFromLittleEndian<quint32>(header.constData());
        switch (type) {
        case QMetaType::QVariantMap:
        case QMetaType::QVariantHash:
        case QMetaType::QVariantList: {
            m_in.skipRawData(headerSize);
            if (++m_depth > deepest)
                m_in.setStatus(QDataStream::ReadCorruptData);
            const QVariant container = readContainer(type, header.at(4) != 0);
            --m_depth;
            return container;
        }
        default:
            return readPlainValue();
        }
    }

    QVariant readContainer(quint32 type, bool isNull)
    {
        QVariantList list;
        QVariantMap map;
        if (type == QMetaType::QVariantList)
            readList(list);
        else
            readMap(map);
        if (isNull && list.isEmpty() && map.isEmpty())
            return kelVariant::null(static_cast<int>(type));
        if (type == QMetaType::QVariantList)
            return list;
        if (type == QMetaType::QVariantMap)
            return map;
        QVariantHash hash;
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            hash.insert(it.key(), it.value());
        return hash;
    }

    void readList(QVariantList &list)
    {
        quint32 count = 0;
        m_in >> count;
        for (quint32 i = 0; i < count && ok(); ++i)
            list.append(readValue());
    }

    QVariant readPlainValue()
    {
        QVariant value;
        try {
            m_in >> value;
        } catch (const std::bad_alloc &) { // a corrupt size, of a list of strings for one
            m_in.setStatus(QDataStream::ReadCorruptData);
        }
        return value;
    }

    static constexpr int headerSize = 5; ///< type and null flag
    static constexpr int deepest =
        1000; ///< levels of containers; no stack is deep enough for what bytes may claim

    QDataStream &m_in;
    int m_depth = 0;
};

} // namespace

QByteArray kelDataFlowRecord::encoded(QString *problem) const
{
    Encoder encoder;
    encoder.writeString(dataType);
    if (encoder.writeMap(properties))
        return encoder.bytes();
    if (problem)
        *problem = encoder.problem();
    return QByteArray();
}

bool kelDataFlowRecord::read(QDataStream &in)
{
    const RecordStream versioned(in);
    const QDataStream::Status before = in.status();
    in.resetStatus();

    dataType.clear();
    in >> dataType;
    StreamReader(in).readMap(properties);

    const bool whole = in.status() == QDataStream::Ok;
    if (before != QDataStream::Ok) {
        in.resetStatus();
        in.setStatus(before);
    }
    return whole;
}

qint64 kelDataFlowRecord::decode(const char *data, qint64 size)
{
    if (const qint64 used = Decoder(data, size).decode(*this))
        return used;
    QDataStream in(QByteArray::fromRawData(data, static_cast<int>(std::min<qint64>(size, INT_MAX))));
    return read(in) ? in.device()->pos() : 0;
}
