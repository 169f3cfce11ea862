#include <kelCore/recording/internal/kelValueCodec.h>

#include <kelCore/recording/internal/kelValueLayout.h>
#include <kelCore/recording/internal/kelValueType.h>
#include <kelCore/recording/internal/kelVariant.h>

#include <QIODevice>

#include <array>
#include <new>

namespace {

/// The pictures of one record may take this memory, and as many times their recorded bytes: an empty picture
/// packs a thousand to one, a photograph three to one.
constexpr qint64 freePixelBytes = 64 << 20;
constexpr qint64 pixelBytesPerByte = 16;

} // namespace

bool kelValueReader::read(QVariant &value)
{
    m_in.mark();
    quint32 number = 0;
    qint8 isNull = 0;
    if (!m_in.header(number, isNull)) {
        m_in.unmark();
        return false;
    }
    if (number == kelValueType::named)
        return readNamed(isNull != 0, value);
    return readOfType(kelValueType::numbered(number), isNull != 0, value);
}

bool kelValueReader::readNamed(bool isNull, QVariant &value)
{
    QByteArray name;
    if (!m_in.bytes(name)) {
        m_in.unmark();
        return false;
    }
    const int type = kelVariant::typeNamed(name);
    if (type >= QMetaType::User)
        return readOfApplication(type, name, isNull, value);
    return readOfType(type == QMetaType::UnknownType ? nullptr : kelValueType::ofMetaType(type), isNull,
                      value);
}

bool kelValueReader::readOfType(const kelValueType *type, bool isNull, QVariant &value)
{
    if (type && (isNull || !type->read))
        return readWithToolkit(*type, value);
    m_in.unmark();
    return type ? type->read(*this, value) : m_in.fail(QDataStream::ReadCorruptData);
}

bool kelValueReader::readWithToolkit(const kelValueType &type, QVariant &value)
{
    bool whole = kelWalkLayout(*this, type.layout);
    if (whole) {
        const QByteArray bytes = m_in.marked();
        QDataStream stream(bytes);
        m_in.prepare(stream);
        stream >> value;
        whole =
            (stream.status() == QDataStream::Ok && stream.atEnd()) || m_in.fail(QDataStream::ReadCorruptData);
    }
    m_in.unmark();
    return whole;
}

bool kelValueReader::readOfApplication(int type, const QByteArray &name, bool isNull, QVariant &value)
{
    m_in.unmark();
    if (claimsTooMuch(name))
        return m_in.fail(QDataStream::ReadCorruptData);
    bool loaded = false;
    try {
        loaded = m_in.withStream(
            [&](QDataStream &stream) { return kelVariant::load(stream, type, isNull, value); });
    } catch (const std::bad_alloc &) { // a corrupt count of the application's own
    }
    return loaded || m_in.fail(QDataStream::ReadCorruptData);
}

bool kelValueReader::claimsTooMuch(const QByteArray &name)
{
    // The toolkit's containers begin with a count, for which they take the memory at once.
    static const std::array<const char *, 3> containers{"QList<", "QVector<", "QSet<"};
    bool counted = false;
    for (const char *container : containers)
        counted |= name.startsWith(container);
    quint32 count = 0;
    return counted && m_in.peek(count) && count > m_in.left();
}

bool kelValueReader::readMap(QVariantMap &map)
{
    const QVariantMap previous = std::move(map);
    map = QVariantMap();
    quint32 count = 0;
    if (!m_in.number(count))
        return false;
    auto old = previous.cend();
    for (quint32 i = 0; i < count; ++i) {
        QString key = old != previous.cbegin() ? (--old).key() : QString();
        if (!m_in.text(key))
            return false;
        const auto entry = map.insert(map.cbegin(), key, QVariant());
        if (!read(*entry)) {
            map.erase(entry);
            return false;
        }
    }
    return true;
}

bool kelValueReader::readList(QVariantList &list)
{
    quint32 count = 0;
    if (!m_in.number(count))
        return false;
    for (quint32 i = 0; i < count; ++i) {
        QVariant element;
        if (!read(element))
            return false;
        list.append(element);
    }
    return true;
}

bool kelValueReader::skip()
{
    const Level level(*this);
    quint32 number = 0;
    qint8 isNull = 0;
    if (!level.entered() || !m_in.header(number, isNull))
        return false;
    const kelValueType *type = nullptr;
    if (number == kelValueType::named) {
        QByteArray name;
        if (!m_in.bytes(name))
            return false;
        type = kelValueType::ofMetaType(kelVariant::typeNamed(name));
    } else {
        type = kelValueType::numbered(number);
    }
    // An application's type has no known layout, and stands in no value that the toolkit decodes.
    return type ? kelWalkLayout(*this, type->layout) : m_in.fail(QDataStream::ReadCorruptData);
}

bool kelValueReader::takePixels(qint64 pixelBytes, qint64 recordedBytes)
{
    m_pixelBytes += pixelBytes - recordedBytes * pixelBytesPerByte;
    return m_pixelBytes <= freePixelBytes || m_in.fail(QDataStream::ReadCorruptData);
}

bool kelValueWriter::write(const QVariant &value)
{
    const kelValueType *type = kelValueType::ofMetaType(value.userType());
    if (!type || !type->write)
        return writeWithToolkit(value);
    m_out.number(type->number);
    m_out.number(qint8(kelVariant::nullFlag(value)));
    return type->write(*this, value);
}

bool kelValueWriter::writeMap(const QVariantMap &map)
{
    m_out.number(static_cast<quint32>(map.size()));
    const QString *outer = m_key;
    for (auto it = map.cend(); it != map.cbegin();) {
        --it;
        m_key = &it.key();
        m_out.text(it.key());
        if (!write(it.value()))
            return false;
    }
    m_key = outer;
    return true;
}

bool kelValueWriter::writeWithToolkit(const QVariant &value)
{
    if (!kelVariant::hasStreamOperators(value)) {
        m_problem =
            QStringLiteral("entry \"%1\" of type %2 is not recorded: the type has no stream operators")
                .arg(m_key ? *m_key : QString(), QString::fromLatin1(value.typeName()));
        return false;
    }
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_8);
    stream << value;
    m_out.raw(bytes);
    return true;
}
