#include <kelCore/process/kelDataFlowRecord.h>

#include <QDataStream>
#include <QIODevice>
#include <QMetaType>
#include <QRect>
#include <QVariant>
#include <QtEndian>

#include <algorithm>
#include <climits>
#include <cstring>
#include <optional>

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

bool hasStreamOperators(const QVariant &value)
{
    if (!value.isValid())
        return true;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return value.metaType().hasRegisteredDataStreamOperators();
#else
    QByteArray bytes;
    QDataStream trial(&bytes, QIODevice::WriteOnly);
    return QMetaType::save(trial, value.userType(), value.constData());
#endif
}

/// Writes a record's values. The toolkit's own map operator is not used: its order of keys changed with Qt 6,
/// and it writes nothing at all for a value whose type has no stream operators.
class Encoder
{
public:
    explicit Encoder(QDataStream &out) : m_out(out) { }

    bool writeMap(const QVariantMap &map)
    {
        m_out << static_cast<quint32>(map.size());
        for (auto it = map.cend(); it != map.cbegin();) {
            --it;
            m_out << it.key();
            if (!writeValue(it.key(), it.value()))
                return false;
        }
        return true;
    }

    const QString &problem() const { return m_problem; }

private:
    bool writeValue(const QString &key, const QVariant &value)
    {
        const int type = value.userType();
        switch (type) {
        case QMetaType::QVariantMap:
            writeHeader(type);
            return writeMap(value.toMap());
        case QMetaType::QVariantHash: {
            writeHeader(type);
            QVariantMap sorted;
            const QVariantHash hash = value.toHash();
            for (auto it = hash.cbegin(); it != hash.cend(); ++it)
                sorted.insert(it.key(), it.value());
            return writeMap(sorted);
        }
        case QMetaType::QVariantList: {
            writeHeader(type);
            const QVariantList list = value.toList();
            m_out << static_cast<quint32>(list.size());
            for (const QVariant &element : list)
                if (!writeValue(key, element))
                    return false;
            return true;
        }
        case QMetaType::Int:
        case QMetaType::Double:
        case QMetaType::QString:
        case QMetaType::QRect:
            break; // common, and known to be streamable
        default:
            if (!hasStreamOperators(value)) {
                m_problem = QStringLiteral(
                                "entry \"%1\" of type %2 is not recorded: the type has no stream operators")
                                .arg(key, QString::fromLatin1(value.typeName()));
                return false;
            }
        }
        m_out << value;
        return true;
    }

    void writeHeader(int type) { m_out << static_cast<quint32>(type) << qint8(0); }

    QDataStream &m_out;
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
            QString key;
            if (old != previous.cbegin())
                key = (--old).key();
            std::optional<QVariant> value;
            if (!readString(key) || !(value = readValue()))
                return 0;
            record.properties.insert(record.properties.cbegin(), key, *value);
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
        const auto at = [characters](int i) { return QChar(qFromBigEndian<quint16>(characters + 2 * i)); };
        int same = 0;
        if (!text.isNull() && text.size() == length)
            while (same < length && text.at(same) == at(same))
                ++same;
        if (same == length && !text.isNull())
            return true;
        text = QString(length, Qt::Uninitialized);
        QChar *out = text.data();
        for (int i = 0; i < length; ++i)
            out[i] = at(i);
        return true;
    }

    std::optional<QVariant> readValue()
    {
        quint32 type = 0;
        qint8 null = 0;
        if (!readInt(type) || !readInt(null) || null)
            return std::nullopt;
        switch (type) {
        case QMetaType::Int: {
            qint32 number = 0;
            return readInt(number) ? std::optional<QVariant>(number) : std::nullopt;
        }
        case QMetaType::Double: {
            quint64 bits = 0;
            if (!readInt(bits))
                return std::nullopt;
            double number;
            std::memcpy(&number, &bits, sizeof number);
            return QVariant(number);
        }
        case QMetaType::QString: {
            QString text;
            return readString(text) ? std::optional<QVariant>(text) : std::nullopt;
        }
        case QMetaType::QRect: {
            qint32 left = 0, top = 0, right = 0, bottom = 0;
            if (!readInt(left) || !readInt(top) || !readInt(right) || !readInt(bottom))
                return std::nullopt;
            return QVariant(QRect(QPoint(left, top), QPoint(right, bottom)));
        }
        default:
            return std::nullopt;
        }
    }

    const char *m_begin;
    const char *m_at;
    const char *m_end;
};

} // namespace

QByteArray kelDataFlowRecord::encoded(QString *problem) const
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    const RecordStream versioned(out);
    out << dataType;
    Encoder encoder(out);
    if (encoder.writeMap(properties))
        return bytes;
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
    properties.clear();
    quint32 count = 0;
    in >> dataType >> count;
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        QString key;
        QVariant value;
        in >> key >> value;
        if (in.status() == QDataStream::Ok)
            properties.insert(key, value);
    }

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
