#ifndef KELCORE_KELVALUECODEC_H
#define KELCORE_KELVALUECODEC_H

/// \file
/// The values of a record: one table of types (kelValueType.h) drives reading and writing. Internal.

#include <kelCore/recording/internal/kelByteReader.h>
#include <kelCore/recording/internal/kelByteWriter.h>

#include <QString>
#include <QVariant>
#include <QVariantMap>

struct kelValueType;

/// Reads values, and believes nothing of what they claim: containers grow as their elements come, nesting
/// ends at `deepest`, what the toolkit decodes has been walked through before, and the pictures of a record
/// are no larger than its bytes warrant.
class kelValueReader
{
public:
    /// Levels of values in values; no stack is deep enough for what bytes may claim.
    static constexpr int deepest = 1000;

    /// One level of values in values, for as long as it lives.
    class Level
    {
    public:
        explicit Level(kelValueReader &reader) : m_reader(reader)
        {
            if (++m_reader.m_depth > deepest)
                m_reader.m_in.fail(QDataStream::ReadCorruptData);
        }
        ~Level() { --m_reader.m_depth; }
        Q_DISABLE_COPY(Level)

        bool entered() const { return m_reader.m_depth <= deepest; }

    private:
        kelValueReader &m_reader;
    };

    explicit kelValueReader(kelByteReader &in) : m_in(in) { }

    kelByteReader &in() { return m_in; }

    /// One value: its type, its null flag, and what its type makes of it.
    bool read(QVariant &value);
    /// A map without the header of a value. Fills `map` as far as it can be read. What `map` held before may
    /// lend its keys.
    bool readMap(QVariantMap &map);
    /// A list without the header of a value.
    bool readList(QVariantList &list);
    /// Walks through one value without building it; false where the toolkit must not be let near it.
    bool skip();
    /// Counts a picture that takes `recordedBytes` in the record; false when its pixels are too many.
    bool takePixels(qint64 pixelBytes, qint64 recordedBytes);

private:
    bool readNamed(bool isNull, QVariant &value);
    bool readOfType(const kelValueType *type, bool isNull, QVariant &value);
    bool readWithToolkit(const kelValueType &type, QVariant &value);
    bool readOfApplication(int type, const QByteArray &name, bool isNull, QVariant &value);
    bool claimsTooMuch(const QByteArray &name);

    kelByteReader &m_in;
    int m_depth = 0;
    qint64 m_pixelBytes = 0; ///< Beyond those that the pictures' recorded bytes warrant.
};

/// Writes values. The toolkit's own map operator is not used: its order of keys changed with Qt 6, and it
/// writes nothing at all for a value whose type has no stream operators.
class kelValueWriter
{
public:
    explicit kelValueWriter(kelByteWriter &out) : m_out(out) { }

    kelByteWriter &out() { return m_out; }

    /// False for a value without stream operators, alone or inside the value; `problem` then names the type,
    /// and the entry that it stands in.
    bool write(const QVariant &value);
    /// A map without the header of a value, greatest key first.
    bool writeMap(const QVariantMap &map);

    const QString &problem() const { return m_problem; }

private:
    bool writeWithToolkit(const QVariant &value);

    kelByteWriter &m_out;
    const QString *m_key = nullptr; ///< Of the entry in work.
    QString m_problem;
};

#endif
