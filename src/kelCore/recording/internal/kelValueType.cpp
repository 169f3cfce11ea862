#include <kelCore/recording/internal/kelValueType.h>

#include <kelCore/recording/internal/kelValueCodec.h>
#include <kelCore/recording/internal/kelVariant.h>

#include <QDateTime>
#include <QEasingCurve>
#include <QLineF>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QStringList>
#include <QTextFormat>

#include <algorithm>
#include <array>
#include <iterator>

namespace {

// Numbers, one after the other.

// What others are made of stands in front of the templates that put them together.
bool takeOne(kelByteReader &in, QPoint &value);
bool takeOne(kelByteReader &in, QPointF &value);
bool takeOne(kelByteReader &in, QDate &value);
bool takeOne(kelByteReader &in, QTime &value);
void put(kelByteWriter &out, const QPoint &value);
void put(kelByteWriter &out, const QPointF &value);
void put(kelByteWriter &out, const QDate &value);
void put(kelByteWriter &out, const QTime &value);

bool takeOne(kelByteReader &in, bool &value)
{
    qint8 byte = 0;
    const bool taken = in.number(byte);
    value = byte != 0;
    return taken;
}
bool takeOne(kelByteReader &in, int &value) { return in.number(value); }
bool takeOne(kelByteReader &in, uint &value) { return in.number(value); }
bool takeOne(kelByteReader &in, qlonglong &value) { return in.number(value); }
bool takeOne(kelByteReader &in, qulonglong &value) { return in.number(value); }
bool takeOne(kelByteReader &in, qint8 &value) { return in.number(value); }
bool takeOne(kelByteReader &in, double &value) { return in.real(value); }
bool takeOne(kelByteReader &in, QString &value) { return in.text(value); }
bool takeOne(kelByteReader &in, QByteArray &value) { return in.bytes(value); }

template <class... Values> bool take(kelByteReader &in, Values &...values)
{
    return (takeOne(in, values) && ...);
}

void put(kelByteWriter &out, bool value) { out.number(qint8(value)); }
void put(kelByteWriter &out, int value) { out.number(value); }
void put(kelByteWriter &out, uint value) { out.number(value); }
void put(kelByteWriter &out, qlonglong value) { out.number(value); }
void put(kelByteWriter &out, qulonglong value) { out.number(value); }
void put(kelByteWriter &out, double value) { out.real(value); }
void put(kelByteWriter &out, const QString &value) { out.text(value); }
void put(kelByteWriter &out, const QByteArray &value) { out.bytes(value); }

template <class... Values> void putAll(kelByteWriter &out, const Values &...values)
{
    (put(out, values), ...);
}

// Shapes.

bool takeOne(kelByteReader &in, QPoint &value) { return take(in, value.rx(), value.ry()); }
void put(kelByteWriter &out, const QPoint &value) { putAll(out, value.x(), value.y()); }

bool takeOne(kelByteReader &in, QPointF &value) { return take(in, value.rx(), value.ry()); }
void put(kelByteWriter &out, const QPointF &value) { putAll(out, value.x(), value.y()); }

bool takeOne(kelByteReader &in, QSize &value) { return take(in, value.rwidth(), value.rheight()); }
void put(kelByteWriter &out, const QSize &value) { putAll(out, value.width(), value.height()); }

bool takeOne(kelByteReader &in, QSizeF &value) { return take(in, value.rwidth(), value.rheight()); }
void put(kelByteWriter &out, const QSizeF &value) { putAll(out, value.width(), value.height()); }

bool takeOne(kelByteReader &in, QRect &value)
{
    qint32 corners[4];
    if (!in.numbers(corners))
        return false;
    value.setCoords(corners[0], corners[1], corners[2], corners[3]);
    return true;
}
void put(kelByteWriter &out, const QRect &value)
{
    putAll(out, value.left(), value.top(), value.right(), value.bottom());
}

bool takeOne(kelByteReader &in, QRectF &value)
{
    double x, y, width, height;
    if (!take(in, x, y, width, height))
        return false;
    value = QRectF(x, y, width, height);
    return true;
}
void put(kelByteWriter &out, const QRectF &value)
{
    putAll(out, value.x(), value.y(), value.width(), value.height());
}

bool takeOne(kelByteReader &in, QLine &value)
{
    QPoint first, second;
    if (!take(in, first, second))
        return false;
    value.setPoints(first, second);
    return true;
}
void put(kelByteWriter &out, const QLine &value) { putAll(out, value.p1(), value.p2()); }

bool takeOne(kelByteReader &in, QLineF &value)
{
    QPointF first, second;
    if (!take(in, first, second))
        return false;
    value.setPoints(first, second);
    return true;
}
void put(kelByteWriter &out, const QLineF &value) { putAll(out, value.p1(), value.p2()); }

// Dates and times.

/// The day in 32 bits; 0 for none.
bool takeOne(kelByteReader &in, QDate &value)
{
    quint32 day = 0;
    if (!in.number(day))
        return false;
    value = day == 0 ? QDate() : QDate::fromJulianDay(day);
    return true;
}
void put(kelByteWriter &out, const QDate &value)
{
    out.number(value.isValid() ? static_cast<quint32>(value.toJulianDay()) : 0u);
}

/// Milliseconds of the day; -1 for none.
bool takeOne(kelByteReader &in, QTime &value)
{
    qint32 milliseconds = 0;
    if (!in.number(milliseconds))
        return false;
    constexpr int day = 24 * 60 * 60 * 1000;
    value = milliseconds < 0 || milliseconds >= day ? QTime() : QTime::fromMSecsSinceStartOfDay(milliseconds);
    return true;
}
void put(kelByteWriter &out, const QTime &value)
{
    out.number(value.isValid() ? value.msecsSinceStartOfDay() : -1);
}

/// Where the time of a date and time is counted, as recorded: nothing more of an offset or a zone is.
enum RecordedSpec : qint8
{
    LocalUnknown = -1,
    LocalStandard = 0,
    LocalSummer = 1,
    Utc = 2
};

bool takeOne(kelByteReader &in, QDateTime &value)
{
    QDate date;
    QTime time;
    qint8 spec = 0;
    in.mark();
    bool taken = take(in, date, time, spec);
    if (taken && spec >= LocalUnknown && spec <= Utc) {
        value = QDateTime(date, time, spec == Utc ? Qt::UTC : Qt::LocalTime);
    } else if (taken) {
        QDataStream rare(in.marked());
        in.prepare(rare);
        rare >> value;
        taken = rare.status() == QDataStream::Ok || in.fail(rare.status());
    }
    in.unmark();
    return taken;
}
void put(kelByteWriter &out, const QDateTime &value)
{
    const Qt::TimeSpec spec = value.timeSpec();
    if (spec == Qt::UTC || spec == Qt::LocalTime) {
        putAll(out, value.date(), value.time());
        return out.number(qint8(spec == Qt::UTC ? Utc : LocalUnknown));
    }
    QByteArray bytes;
    QDataStream rare(&bytes, QIODevice::WriteOnly);
    rare.setVersion(QDataStream::Qt_4_8);
    rare << value;
    out.raw(bytes);
}

// Lists of texts.

bool takeOne(kelByteReader &in, QStringList &value)
{
    quint32 count = 0;
    if (!in.number(count))
        return false;
    for (quint32 i = 0; i < count; ++i) {
        QString text;
        if (!in.text(text))
            return false;
        value.append(text);
    }
    return true;
}
void put(kelByteWriter &out, const QStringList &value)
{
    out.number(static_cast<quint32>(value.size()));
    for (const QString &text : value)
        out.text(text);
}

// Curves.

/// The record holds the address of the curve's function too, which means something in the process that wrote
/// it alone: every curve but an application's own goes without.
bool takeOne(kelByteReader &in, QEasingCurve &value)
{
    quint8 type = 0;
    qulonglong function = 0;
    bool isParameterised = false;
    double period, amplitude, overshoot;
    if (!in.number(type) || !take(in, function, isParameterised))
        return false;
    if (type >= QEasingCurve::Custom)
        return in.fail(QDataStream::ReadCorruptData);
    value.setType(static_cast<QEasingCurve::Type>(type));
    if (!isParameterised)
        return true;
    if (!take(in, period, amplitude, overshoot))
        return false;
    value.setPeriod(period);
    value.setAmplitude(amplitude);
    value.setOvershoot(overshoot);
    return true;
}

template <class Value> bool readAs(kelValueReader &reader, QVariant &value)
{
    Value plain{};
    if (!takeOne(reader.in(), plain))
        return false;
    value = QVariant(plain);
    return true;
}
template <class Value> bool writeAs(kelValueWriter &writer, const QVariant &value)
{
    put(writer.out(), value.value<Value>());
    return true;
}

// Values in values.

bool writeInvalid(kelValueWriter &writer, const QVariant &)
{
    writer.out().text(QString());
    return true;
}

bool readMap(kelValueReader &reader, QVariant &value)
{
    const kelValueReader::Level level(reader);
    if (!level.entered())
        return false;
    QVariantMap map;
    const bool read = reader.readMap(map);
    value = map;
    return read;
}
bool writeMap(kelValueWriter &writer, const QVariant &value) { return writer.writeMap(value.toMap()); }

bool readHash(kelValueReader &reader, QVariant &value)
{
    const kelValueReader::Level level(reader);
    if (!level.entered())
        return false;
    QVariantMap map;
    if (!reader.readMap(map))
        return false;
    QVariantHash hash;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        hash.insert(it.key(), it.value());
    value = hash;
    return true;
}
bool writeHash(kelValueWriter &writer, const QVariant &value)
{
    QVariantMap sorted;
    const QVariantHash hash = value.toHash();
    for (auto it = hash.cbegin(); it != hash.cend(); ++it)
        sorted.insert(it.key(), it.value());
    return writer.writeMap(sorted);
}

bool readList(kelValueReader &reader, QVariant &value)
{
    const kelValueReader::Level level(reader);
    if (!level.entered())
        return false;
    QVariantList list;
    if (!reader.readList(list))
        return false;
    value = list;
    return true;
}
bool writeList(kelValueWriter &writer, const QVariant &value)
{
    const QVariantList list = value.toList();
    writer.out().number(static_cast<quint32>(list.size()));
    return std::all_of(list.cbegin(), list.cend(),
                       [&writer](const QVariant &element) { return writer.write(element); });
}

bool readVariant(kelValueReader &reader, QVariant &value)
{
    const kelValueReader::Level level(reader);
    if (!level.entered())
        return false;
    QVariant inner;
    if (!reader.read(inner))
        return false;
    value = kelVariant::holding(inner);
    return true;
}
bool writeVariant(kelValueWriter &writer, const QVariant &value)
{
    return writer.write(*static_cast<const QVariant *>(value.constData()));
}

/// As the maps of a record, greatest key first; the toolkit's order changed with Qt 6.
bool writeTextFormat(kelValueWriter &writer, const QVariant &value)
{
    const QTextFormat format = value.value<QTextFormat>();
    const QMap<int, QVariant> properties = format.properties();
    writer.out().number(format.type());
    writer.out().number(static_cast<quint32>(properties.size()));
    for (auto it = properties.cend(); it != properties.cbegin();) {
        --it;
        writer.out().number(it.key());
        if (!writer.write(it.value()))
            return false;
    }
    return true;
}

template <class Value> constexpr kelValueType own(quint32 number, int metaType, const char *layout)
{
    return {number, metaType, layout, readAs<Value>, writeAs<Value>};
}
constexpr kelValueType toolkits(quint32 number, int metaType, const char *layout)
{
    return {number, metaType, layout, nullptr, nullptr};
}

constexpr quint32 named = kelValueType::named;

// The layouts' letters: kelValueLayout.cpp.
constexpr kelValueType types[] = {
    {0, QMetaType::UnknownType, "t", nullptr, writeInvalid},
    own<bool>(1, QMetaType::Bool, "1"),
    own<int>(2, QMetaType::Int, "4"),
    own<uint>(3, QMetaType::UInt, "4"),
    own<qlonglong>(4, QMetaType::LongLong, "8"),
    own<qulonglong>(5, QMetaType::ULongLong, "8"),
    own<double>(6, QMetaType::Double, "r"),
    toolkits(7, QMetaType::QChar, "2"),
    {8, QMetaType::QVariantMap, "[tv]", readMap, writeMap},
    {9, QMetaType::QVariantList, "[v]", readList, writeList},
    own<QString>(10, QMetaType::QString, "t"),
    own<QStringList>(11, QMetaType::QStringList, "[t]"),
    own<QByteArray>(12, QMetaType::QByteArray, "s"),
    toolkits(13, QMetaType::QBitArray, "B"),
    own<QDate>(14, QMetaType::QDate, "4"),
    own<QTime>(15, QMetaType::QTime, "4"),
    own<QDateTime>(16, QMetaType::QDateTime, "441"),
    toolkits(17, QMetaType::QUrl, "s"),
    toolkits(18, QMetaType::QLocale, "t"),
    own<QRect>(19, QMetaType::QRect, "4444"),
    own<QRectF>(20, QMetaType::QRectF, "rrrr"),
    own<QSize>(21, QMetaType::QSize, "44"),
    own<QSizeF>(22, QMetaType::QSizeF, "rr"),
    own<QLine>(23, QMetaType::QLine, "4444"),
    own<QLineF>(24, QMetaType::QLineF, "rrrr"),
    own<QPoint>(25, QMetaType::QPoint, "44"),
    own<QPointF>(26, QMetaType::QPointF, "rr"),
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    toolkits(27, QMetaType::QRegExp, "x111"),
#endif
    {28, QMetaType::QVariantHash, "[tv]", readHash, writeHash},
    {29, QMetaType::QEasingCurve, "e", readAs<QEasingCurve>, nullptr},
    toolkits(64, QMetaType::QFont, "tr4111112144"),
    toolkits(65, QMetaType::QPixmap, "p"),
    toolkits(66, QMetaType::QBrush, "b"),
    toolkits(67, QMetaType::QColor, "c"),
    toolkits(68, QMetaType::QPalette, "P"),
    toolkits(69, QMetaType::QIcon, "I"),
    toolkits(70, QMetaType::QImage, "i"),
    toolkits(71, QMetaType::QPolygon, "[44]"),
    toolkits(72, QMetaType::QRegion, "R"),
    toolkits(73, QMetaType::QBitmap, "p"),
    toolkits(74, QMetaType::QCursor, "C"),
    toolkits(75, QMetaType::QSizePolicy, "4"),
    toolkits(76, QMetaType::QKeySequence, "[4]"),
    toolkits(77, QMetaType::QPen, "21rbr[r]r"),
    toolkits(78, QMetaType::QTextLength, "4r"),
    {79, QMetaType::QTextFormat, "4[4v]", nullptr, writeTextFormat},
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    toolkits(80, QMetaType::QMatrix, "rrrrrr"),
#endif
    toolkits(81, QMetaType::QTransform, "rrrrrrrrr"),
    toolkits(82, QMetaType::QMatrix4x4, "rrrrrrrrrrrrrrrr"),
    toolkits(83, QMetaType::QVector2D, "rr"),
    toolkits(84, QMetaType::QVector3D, "rrr"),
    toolkits(85, QMetaType::QVector4D, "rrrr"),
    toolkits(86, QMetaType::QQuaternion, "rrrr"),
    toolkits(129, QMetaType::Long, "8"),
    toolkits(130, QMetaType::Short, "2"),
    toolkits(131, QMetaType::Char, "1"),
    toolkits(132, QMetaType::ULong, "8"),
    toolkits(133, QMetaType::UShort, "2"),
    toolkits(134, QMetaType::UChar, "1"),
    toolkits(135, QMetaType::Float, "r"),
    toolkits(137, QMetaType::SChar, "1"),
    {138, QMetaType::QVariant, "v", readVariant, writeVariant},
    toolkits(141, QMetaType::QRegularExpression, "t4"),
    toolkits(142, QMetaType::QJsonValue, "j"),
    toolkits(143, QMetaType::QJsonObject, "s"),
    toolkits(144, QMetaType::QJsonArray, "s"),
    toolkits(145, QMetaType::QJsonDocument, "s"),
    toolkits(146, QMetaType::QByteArrayList, "[s]"),
    toolkits(148, QMetaType::Nullptr, ""),
    toolkits(149, QMetaType::QCborSimpleType, "1"),
    toolkits(150, QMetaType::QCborValue, "s"),
    toolkits(151, QMetaType::QCborArray, "s"),
    toolkits(152, QMetaType::QCborMap, "s"),
    toolkits(named, QMetaType::QUuid, "88"),
    toolkits(named, QMetaType::QPolygonF, "[rr]"),
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    toolkits(named, QMetaType::QColorSpace, "s"),
    toolkits(named, QMetaType::Char16, "2"),
    toolkits(named, QMetaType::Char32, "4"),
#endif
};

constexpr unsigned numberCount = 153;

/// Places of the types in the table by their number, one higher than they are; 0 where there is none.
constexpr auto places = [] {
    std::array<unsigned char, numberCount> result{};
    for (unsigned char i = 0; i < std::size(types); ++i)
        if (types[i].number != named)
            result[types[i].number] = static_cast<unsigned char>(i + 1);
    return result;
}();

} // namespace

const kelValueType *kelValueType::numbered(quint32 number)
{
    const unsigned place = number < numberCount ? places[number] : 0u;
    return place == 0 ? nullptr : types + place - 1;
}

const kelValueType *kelValueType::ofMetaType(int metaType)
{
    // The most frequent have the same number everywhere.
    const kelValueType *likely = numbered(static_cast<quint32>(metaType));
    if (likely && likely->metaType == metaType)
        return likely;
    const auto found = std::find_if(std::begin(types), std::end(types), [metaType](const kelValueType &type) {
        return type.metaType == metaType;
    });
    return found == std::end(types) ? nullptr : found;
}
