#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"

#include <QBuffer>
#include <QDataStream>
#include <QDateTime>
#include <QPointF>
#include <QRect>
#include <QUrl>

#include <cmath>
#include <random>

/// A type whose stream operators are known to the meta-type system.
struct kelRecordTestPoint
{
    double x, y, z;
};
QDataStream &operator<<(QDataStream &out, const kelRecordTestPoint &p) { return out << p.x << p.y << p.z; }
QDataStream &operator>>(QDataStream &in, kelRecordTestPoint &p) { return in >> p.x >> p.y >> p.z; }
Q_DECLARE_METATYPE(kelRecordTestPoint)

/// A type without stream operators.
struct kelRecordTestHandle
{
    int number;
};
Q_DECLARE_METATYPE(kelRecordTestHandle)

namespace {

void registerTypes()
{
    qRegisterMetaType<kelRecordTestPoint>("kelRecordTestPoint");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<kelRecordTestPoint>("kelRecordTestPoint");
#endif
}

/// A null value of a type.
QVariant nullOf(QMetaType::Type type)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QVariant(QMetaType(type));
#else
    return QVariant(static_cast<QVariant::Type>(type));
#endif
}

/// The record's bytes in hexadecimal.
std::string hex(const QString &dataType, const QVariantMap &properties)
{
    QString problem;
    const QByteArray bytes = kelDataFlowRecord{dataType, properties}.encoded(&problem);
    EXPECT_EQ(problem, QString());
    return bytes.toHex().toStdString();
}

/// Random records. The same sequence in every run.
class Generator
{
public:
    int number(int below) { return static_cast<int>(m_engine() % static_cast<unsigned>(below)); }

    kelDataFlowRecord record()
    {
        static const char *const types[] = {"kelDataBlob", "kelDataImage", "kelDataActor", ""};
        return {QLatin1String(types[number(4)]), map(2)};
    }

    QString text()
    {
        static const ushort characters[] = {'a', 'b', 'B', '_', 0, 0xe9, 0x20ac, 0xd83d, 0xde00, 0xffff};
        switch (number(12)) {
        case 0:
            return QString();
        case 1:
            return QLatin1String("");
        default: {
            QString result;
            for (int left = number(6); left >= 0; --left)
                result += QChar(characters[number(10)]);
            return result;
        }
        }
    }

    QVariantMap map(int depth)
    {
        QVariantMap result;
        for (int left = number(6); left > 0; --left)
            result.insert(text(), value(depth));
        return result;
    }

    QVariant value(int depth)
    {
        const int whole = static_cast<int>(m_engine());
        switch (number(depth > 0 ? 18 : 15)) {
        case 0:
        case 1:
        case 2:
            return whole;
        case 3:
        case 4:
            return whole / 3.0;
        case 5:
        case 6:
            return text();
        case 7:
        case 8:
            return QRect(number(2000) - 1000, whole, number(500), number(500) - 250);
        case 9:
            return QVariant();
        case 10:
            return number(2) == 0;
        case 11:
            return static_cast<qlonglong>(whole) * (1 << 20);
        case 12:
            return text().toUtf8();
        case 13:
            return QStringList{text(), text()};
        case 14:
            return QPointF(whole, number(9));
        case 15:
            return map(depth - 1);
        case 16: {
            QVariantList list;
            for (int left = number(4); left > 0; --left)
                list.append(value(depth - 1));
            return list;
        }
        default:
            return QVariantHash{{text(), value(depth - 1)}};
        }
    }

private:
    std::mt19937 m_engine{20240229};
};

/// What reading from a stream and decoding from memory make of the same bytes must be the same. Gives the
/// number of bytes that the record took.
qint64 expectSameReading(const QByteArray &bytes)
{
    kelDataFlowRecord streamed{"before", {{"k", 1}}};
    QDataStream in(bytes);
    const bool whole = streamed.read(in);
    EXPECT_EQ(whole, in.status() == QDataStream::Ok);

    kelDataFlowRecord decoded{"before", {{"k", 1}}};
    const qint64 used = decoded.decode(bytes.constData(), bytes.size());
    EXPECT_EQ(used, whole ? in.device()->pos() : 0);
    EXPECT_EQ(decoded.dataType, streamed.dataType);
    EXPECT_EQ(decoded.dataType.isNull(), streamed.dataType.isNull());
    EXPECT_EQ(decoded.properties.keys(), streamed.properties.keys());
    EXPECT_EQ(
        decoded.encoded().toHex().toStdString(),
        streamed.encoded().toHex().toStdString()); // numbers that are no numbers are not equal themselves
    return used;
}

/// A record with one entry whose value is `count` elements of the list type `type` claimed, and no element.
QByteArray claiming(quint32 type, quint32 count)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("kelDataBlob") << quint32(2);
    out << QStringLiteral("z") << quint32(2) << qint8(0) << qint32(5);
    out << QStringLiteral("a") << type << qint8(0) << count;
    return bytes;
}

} // namespace

TEST(kelDataFlowRecordTest, ABoxIsItsInclusiveCorners)
{
    EXPECT_EQ(hex("kelDataBlob", {{"BoundingBox2D", QRect(10, 20, 30, 40)}}),
              "00000016006b0065006c00440061007400610042006c006f0062000000010000001a0042006f0075006e0064"
              "0069006e00670042006f00780032004400000013000000000a00000014000000270000003b");
}

TEST(kelDataFlowRecordTest, AnEmptyMapIsACountOfZero)
{
    EXPECT_EQ(hex("kelDataImage", {}), "00000018006b0065006c00440061007400610049006d00610067006500000000");
}

TEST(kelDataFlowRecordTest, EntriesComeWithTheGreatestKeyFirst)
{
    EXPECT_EQ(hex("kelDataBlob", {{"a", -2}, {"b", 1.5}, {"c", QString::fromUtf8("\u00e9")}}),
              "00000016006b0065006c00440061007400610042006c006f0062000000030000000200630000000a00000000"
              "0200e900000002006200000006003ff80000000000000000000200610000000200fffffffe");
}

TEST(kelDataFlowRecordTest, NullEmptyAndInvalidValuesDiffer)
{
    EXPECT_EQ(hex("kelDataBlob",
                  {{"bool", true}, {"empty", QString("")}, {"invalid", QVariant()}, {"null", QString()}}),
              "00000016006b0065006c00440061007400610042006c006f00620000000400000008006e0075006c006c0000"
              "000a00ffffffff0000000e0069006e00760061006c006900640000000001ffffffff0000000a0065006d0070"
              "007400790000000a0000000000000000080062006f006f006c000000010001");
}

TEST(kelDataFlowRecordTest, MapsInsideAMapFollowTheSameOrder)
{
    const QVariantMap map{
        {"h", QVariantHash{{"x", 1}, {"y", 2}}},
        {"l", QVariantList{7, "s", QVariantMap{{"p", 1}, {"q", 2}}}},
        {"m", QVariantMap{{"a", 1}, {"b", QVariantMap{{"c", 2}, {"d", QVariant()}}}}},
    };
    EXPECT_EQ(hex("kelDataBlob", map),
              "00000016006b0065006c00440061007400610042006c006f00620000000300000002006d0000000800000000"
              "020000000200620000000800000000020000000200640000000001ffffffff00000002006300000002000000"
              "000200000002006100000002000000000100000002006c000000090000000003000000020000000007000000"
              "0a00000000020073000000080000000002000000020071000000020000000002000000020070000000020000"
              "0000010000000200680000001c00000000020000000200790000000200000000020000000200780000000200"
              "00000001");
}

TEST(kelDataFlowRecordTest, NullContainersCarryTheNullFlag)
{
    const QVariantMap map{{"h", nullOf(QMetaType::QVariantHash)},
                          {"l", nullOf(QMetaType::QVariantList)},
                          {"m", nullOf(QMetaType::QVariantMap)}};
    EXPECT_EQ(hex("kelDataBlob", map),
              "00000016006b0065006c00440061007400610042006c006f00620000000300000002006d0000000801000000"
              "0000000002006c0000000901000000000000000200680000001c0100000000");
}

TEST(kelDataFlowRecordTest, AUserTypeWithStreamOperatorsIsStoredUnderItsName)
{
    registerTypes();
    const QVariantMap map{{"p", QVariant::fromValue(kelRecordTestPoint{1, 2, 3})}};
    EXPECT_EQ(hex("kelDataBlob", map),
              "00000016006b0065006c00440061007400610042006c006f0062000000010000000200700000007f00000000"
              "136b656c5265636f726454657374506f696e74003ff000000000000040000000000000004008000000000000");

    const QByteArray bytes = kelDataFlowRecord{"kelDataBlob", map}.encoded();
    kelDataFlowRecord record;
    EXPECT_EQ(record.decode(bytes.constData(), bytes.size()), bytes.size());
    const auto point = record.properties.value("p").value<kelRecordTestPoint>();
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 2);
    EXPECT_EQ(point.z, 3);
}

TEST(kelDataFlowRecordTest, AValueWithoutStreamOperatorsIsRefusedByKeyAndType)
{
    const QVariant object = QVariant::fromValue<QObject *>(nullptr);
    const QVariant pointer = QVariant::fromValue<void *>(nullptr);
    const QVariant handle = QVariant::fromValue(kelRecordTestHandle{1});
    const struct
    {
        QVariantMap map;
        QString key;
        QString type;
    } cases[] = {
        {{{"a", 1}, {"bad", object}, {"c", 1}}, "bad", "QObject*"},
        {{{"bad", pointer}}, "bad", "void*"},
        {{{"bad", handle}}, "bad", "kelRecordTestHandle"},
        {{{"outer", QVariantMap{{"bad", handle}}}}, "bad", "kelRecordTestHandle"},
        {{{"outer", QVariantHash{{"bad", object}}}}, "bad", "QObject*"},
        {{{"list", QVariantList{1, pointer}}}, "list", "void*"},
        {{{"list", QVariantList{QVariantList{QVariantMap{{"bad", handle}}}}}}, "bad", "kelRecordTestHandle"},
    };
    MessageCapture messages;
    for (const auto &one : cases) {
        const kelDataFlowRecord record{"kelDataBlob", one.map};
        QString problem;
        EXPECT_EQ(record.encoded(&problem), QByteArray());
        EXPECT_TRUE(problem.contains('"' + one.key + '"')) << problem.toStdString();
        EXPECT_TRUE(problem.contains(" " + one.type + " ")) << problem.toStdString();
        EXPECT_EQ(record.encoded(), QByteArray());
    }
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataFlowRecordTest, TheBytesAreThoseOfTheToolkitsStream)
{
    Generator generator;
    for (int i = 0; i < 500; ++i) {
        const kelDataFlowRecord record = generator.record();
        const QByteArray bytes = record.encoded();
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // whose order of keys is the record's
        QByteArray expected;
        QDataStream out(&expected, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_4_8);
        out << record.dataType << record.properties;
        ASSERT_EQ(bytes.toHex().toStdString(), expected.toHex().toStdString());
#endif
        QDataStream in(bytes);
        in.setVersion(QDataStream::Qt_4_8);
        QString dataType;
        QVariantMap properties;
        in >> dataType >> properties;
        ASSERT_EQ(dataType, record.dataType);
        ASSERT_EQ(properties, record.properties);
        ASSERT_TRUE(in.atEnd());
    }
}

TEST(kelDataFlowRecordTest, EveryRecordIsReadBackEitherWay)
{
    Generator generator;
    for (int i = 0; i < 2000; ++i) {
        const kelDataFlowRecord record = generator.record();
        const QByteArray bytes = record.encoded();
        ASSERT_EQ(expectSameReading(bytes + "more"), bytes.size());
        kelDataFlowRecord read;
        ASSERT_EQ(read.decode(bytes.constData(), bytes.size()), bytes.size());
        ASSERT_EQ(read.dataType, record.dataType);
        ASSERT_EQ(read.properties, record.properties);
    }
}

TEST(kelDataFlowRecordTest, SpecialNumbersSurvive)
{
    const QVariantMap map{{"inf", HUGE_VAL}, {"nan", std::nan("")}, {"zero", -0.0}, {"tiny", 4.9e-324}};
    const QByteArray bytes = kelDataFlowRecord{"kelDataBlob", map}.encoded();
    EXPECT_EQ(expectSameReading(bytes), bytes.size());
    kelDataFlowRecord read;
    read.decode(bytes.constData(), bytes.size());
    EXPECT_TRUE(std::isnan(read.properties.value("nan").toDouble()));
    EXPECT_TRUE(std::signbit(read.properties.value("zero").toDouble()));
    EXPECT_EQ(read.properties.value("inf"), HUGE_VAL);
    EXPECT_EQ(read.properties.value("tiny"), 4.9e-324);
}

TEST(kelDataFlowRecordTest, OneRecordCanBeUsedAgainForTheNext)
{
    Generator generator;
    QByteArray file;
    QList<kelDataFlowRecord> records;
    for (int i = 0; i < 1000; ++i) {
        // Mostly the keys of the one before, as in a run.
        records.append(i % 3 == 0 || records.isEmpty() ? generator.record() : records.last());
        file += records.last().encoded();
    }
    kelDataFlowRecord record;
    QList<QVariantMap> read;
    qint64 at = 0;
    for (const kelDataFlowRecord &expected : records) {
        const qint64 used = record.decode(file.constData() + at, file.size() - at);
        ASSERT_GT(used, 0);
        ASSERT_EQ(record.dataType, expected.dataType);
        read.append(record.properties);
        at += used;
    }
    EXPECT_EQ(at, file.size());
    for (int i = 0; i < records.size(); ++i) // what was handed out does not change any more
        ASSERT_EQ(read.at(i), records.at(i).properties);
}

TEST(kelDataFlowRecordTest, ReadRestoresTheVersionOfTheStream)
{
    const kelDataFlowRecord record{"kelDataBlob", {{"invalid", QVariant()}, {"real", 0.1}}};
    for (int version = QDataStream::Qt_1_0; version <= QDataStream::Qt_DefaultCompiledVersion; ++version) {
        QDataStream in(record.encoded());
        in.setVersion(version);
        kelDataFlowRecord read;
        EXPECT_TRUE(read.read(in));
        EXPECT_EQ(in.version(), version);
        EXPECT_EQ(read.properties, record.properties);
    }
}

TEST(kelDataFlowRecordTest, ReadKeepsTheErrorThatTheStreamHadBefore)
{
    const kelDataFlowRecord record{"kelDataBlob", {{"k", 1}}};
    QDataStream in(record.encoded());
    in.setStatus(QDataStream::ReadCorruptData);
    kelDataFlowRecord read;
    EXPECT_TRUE(read.read(in));
    EXPECT_EQ(read.properties, record.properties);
    EXPECT_EQ(in.status(), QDataStream::ReadCorruptData);
}

TEST(kelDataFlowRecordTest, ReadStopsBehindTheRecord)
{
    const QByteArray first = kelDataFlowRecord{"kelDataActor", {{"k", 1}}}.encoded();
    QDataStream in(first + kelDataFlowRecord{"kelDataBlob", {{"k", 2}}}.encoded());
    kelDataFlowRecord record;
    EXPECT_TRUE(record.read(in));
    EXPECT_EQ(in.device()->pos(), first.size());
    EXPECT_TRUE(record.read(in));
    EXPECT_EQ(record.dataType, "kelDataBlob");
    EXPECT_EQ(record.properties, (QVariantMap{{"k", 2}}));
    EXPECT_TRUE(in.atEnd());
}

TEST(kelDataFlowRecordTest, ATruncatedRecordIsFilledAsFarAsItWasRead)
{
    const QByteArray bytes = kelDataFlowRecord{"kelDataBlob", {{"a", 1}, {"b", 2}, {"c", 3}}}.encoded();
    const int entry = 4 + 2 + 4 + 1 + 4;
    for (int missing = 1; missing <= 3 * entry; ++missing) {
        QDataStream in(bytes.left(bytes.size() - missing));
        kelDataFlowRecord record{"before", {{"before", 1}}};
        EXPECT_FALSE(record.read(in));
        EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
        EXPECT_EQ(record.dataType, "kelDataBlob");
        QVariantMap expected{{"c", 3}, {"b", 2}};
        if (missing > entry)
            expected.remove("b");
        if (missing > 2 * entry)
            expected.remove("c");
        EXPECT_EQ(record.properties, expected) << missing;
    }
}

TEST(kelDataFlowRecordTest, EveryTruncationIsReadTheSameEitherWay)
{
    registerTypes();
    Generator generator;
    MessageCapture messages;
    for (int i = 0; i < 60; ++i) {
        kelDataFlowRecord record = generator.record();
        if (i % 8 == 0)
            record.properties.insert("point", QVariant::fromValue(kelRecordTestPoint{1, 2, 3}));
        const QByteArray bytes = record.encoded();
        for (int size = 0; size < bytes.size(); ++size)
            ASSERT_EQ(expectSameReading(bytes.left(size)), 0);
    }
}

TEST(kelDataFlowRecordTest, CorruptBytesAreReadTheSameEitherWay)
{
    Generator generator;
    MessageCapture messages;
    for (int i = 0; i < 20000; ++i) {
        QByteArray bytes = generator.record().encoded();
        for (int left = generator.number(3); left >= 0; --left)
            bytes[generator.number(static_cast<int>(bytes.size()))] =
                static_cast<char>(generator.number(256));
        expectSameReading(bytes);
        if (testing::Test::HasFailure())
            FAIL() << bytes.toHex().toStdString();
        messages.take();
    }
}

TEST(kelDataFlowRecordTest, ALengthBeyondTheBytesIsAnErrorAndNothingElse)
{
    MessageCapture messages;
    for (const quint32 type : {8u, 9u, 10u, 11u, 12u, 28u}) // map, list, text, texts, bytes, hash
        for (const quint32 count : {1u, 0x1000000u, 0x10000000u, 0x7fffffffu, 0x80000000u, 0xfffffffdu}) {
            const QByteArray bytes = claiming(type, count);
            EXPECT_EQ(expectSameReading(bytes), 0) << type << ' ' << count;
            QDataStream in(bytes);
            kelDataFlowRecord record;
            EXPECT_FALSE(record.read(in)) << type << ' ' << count;
            EXPECT_NE(in.status(), QDataStream::Ok);
            EXPECT_EQ(record.properties, (QVariantMap{{"z", 5}})) << type << ' ' << count;
        }
}

TEST(kelDataFlowRecordTest, ACountBeyondTheBytesEndsQuickly)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("kelDataBlob") << quint32(0xffffffff);
    EXPECT_EQ(expectSameReading(bytes), 0);
}

TEST(kelDataFlowRecordTest, AKeyThatComesTwiceKeepsItsLastValue)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("kelDataBlob") << quint32(3);
    for (const int number : {1, 2, 3})
        out << QString(number == 2 ? "other" : "same") << quint32(2) << qint8(0) << qint32(number);
    EXPECT_EQ(expectSameReading(bytes), bytes.size());
    kelDataFlowRecord record;
    record.decode(bytes.constData(), bytes.size());
    EXPECT_EQ(record.properties, (QVariantMap{{"other", 2}, {"same", 3}}));
}

TEST(kelDataFlowRecordTest, KeysInAscendingOrderAreReadToo)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("kelDataBlob") << quint32(3);
    for (const char *key : {"a", "b", "c"})
        out << QString(key) << quint32(2) << qint8(0) << qint32(*key);
    EXPECT_EQ(expectSameReading(bytes), bytes.size());
    kelDataFlowRecord record;
    record.decode(bytes.constData(), bytes.size());
    EXPECT_EQ(record.properties, (QVariantMap{{"a", 97}, {"b", 98}, {"c", 99}}));
}

TEST(kelDataFlowRecordTest, EmptyTextsBehindOthersAreReadAsEmpty)
{
    kelDataFlowRecord record{"kelDataBlob", {{"k", 1}, {"l", 2}}};
    for (const QString &empty : {QString(), QString("")}) {
        const QByteArray bytes = kelDataFlowRecord{empty, {{empty, 3}, {"l", empty}}}.encoded();
        EXPECT_EQ(record.decode(bytes.constData(), bytes.size()), bytes.size());
        EXPECT_EQ(record.dataType, "");
        EXPECT_EQ(record.properties, (QVariantMap{{"", 3}, {"l", empty}}));
        EXPECT_EQ(record.properties.value("l").toString().isNull(), empty.isNull());
    }
}

TEST(kelDataFlowRecordTest, AnUnknownUserTypeIsAnError)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("kelDataBlob") << quint32(1) << QStringLiteral("k") << quint32(127) << qint8(0)
        << "kelNoSuchType";
    MessageCapture messages;
    EXPECT_EQ(expectSameReading(bytes), 0);
}

TEST(kelDataFlowRecordTest, NothingIsReadFromNothing)
{
    kelDataFlowRecord record{"before", {{"k", 1}}};
    EXPECT_EQ(record.decode("", 0), 0);
    EXPECT_TRUE(record.dataType.isEmpty());
    EXPECT_TRUE(record.properties.isEmpty());
}

TEST(kelDataFlowRecordTest, ContainersInContainersAreReadToAGreatDepth)
{
    QVariant value = 7;
    for (int i = 0; i < 300; ++i)
        value = i % 2 ? QVariant(QVariantList{value, i}) : QVariant(QVariantMap{{"k", value}, {"i", i}});
    const kelDataFlowRecord written{"kelDataBlob", {{"deep", value}}};
    const QByteArray bytes = written.encoded();
    kelDataFlowRecord record;
    EXPECT_EQ(record.decode(bytes.constData(), bytes.size()), bytes.size());
    EXPECT_EQ(record.properties, written.properties);
}

TEST(kelDataFlowRecordTest, ADepthThatNoStackHoldsIsCorrupt)
{
    const QByteArray level = QByteArray::fromHex("00000009"
                                                 "00"
                                                 "00000001"); // a list of one element
    const kelDataFlowRecord empty{"kelDataBlob", {{"deep", QVariant()}}};
    QByteArray bytes = empty.encoded();
    bytes.chop(9); // the invalid value: type, null flag, null text
    bytes += level.repeated(200000);
    kelDataFlowRecord record;
    EXPECT_EQ(record.decode(bytes.constData(), bytes.size()), 0);
    QDataStream in(bytes);
    EXPECT_FALSE(record.read(in));
    EXPECT_EQ(in.status(), QDataStream::ReadCorruptData);
    EXPECT_EQ(record.dataType, "kelDataBlob");
    EXPECT_TRUE(record.properties.isEmpty());
}
