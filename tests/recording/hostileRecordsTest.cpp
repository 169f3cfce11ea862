// Records that claim more than they hold: reading them ends quickly, in little memory, with an error.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcessDataFlowReader.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "recording/recordedTypes.h"
#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <QIODevice>

#include <algorithm>
#include <random>

#include <sys/resource.h>

/// A type whose stream operator believes a count, as those of the toolkit's containers do.
struct kelHostileTestList
{
    std::vector<double> values;
};
QDataStream &operator<<(QDataStream &out, const kelHostileTestList &list)
{
    return out << quint32(list.values.size());
}
QDataStream &operator>>(QDataStream &in, kelHostileTestList &list)
{
    quint32 count = 0;
    in >> count;
    list.values.reserve(size_t(count) << 16);
    return in;
}
Q_DECLARE_METATYPE(kelHostileTestList)

/// A type whose stream operator throws.
struct kelHostileTestThrower
{ };
QDataStream &operator<<(QDataStream &out, const kelHostileTestThrower &) { return out << 7; }
QDataStream &operator>>(QDataStream &, kelHostileTestThrower &) { throw 42; }
Q_DECLARE_METATYPE(kelHostileTestThrower)

namespace {

template <class Type> void registerType(const char *name)
{
    qRegisterMetaType<Type>(name);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<Type>(name);
#endif
}

/// A record with one entry whose value has these bytes.
QByteArray recordWith(const QByteArray &value)
{
    QByteArray record = kelDataFlowRecord{"kelDataBlob", {{"k", QVariant()}}}.encoded();
    record.chop(9); // the invalid value
    return record + value;
}

QByteArray header(quint32 type)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << type << qint8(0);
    return bytes;
}

QByteArray named(const char *name)
{
    return header(127) + fromHex("000000") + char(qstrlen(name) + 1)
        + QByteArray(name, int(qstrlen(name)) + 1);
}

/// Neither memory nor a stream gives the record; the stream is in its error state and at an end or behind
/// what was taken.
void expectRefused(const QByteArray &record)
{
    MessageCapture messages;
    kelDataFlowRecord decoded;
    EXPECT_EQ(decoded.decode(record.constData(), record.size()), 0);
    EXPECT_EQ(decoded.dataType, "kelDataBlob");
    EXPECT_TRUE(decoded.properties.isEmpty());
    QDataStream in(record);
    kelDataFlowRecord streamed;
    EXPECT_FALSE(streamed.read(in));
    EXPECT_NE(in.status(), QDataStream::Ok);
    EXPECT_TRUE(streamed.properties.isEmpty());
}

long peakMegabytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss >> 10;
}

} // namespace

TEST(hostileRecordsTest, ACountThatTheBytesDoNotHoldIsAnErrorForEveryTypeThatHasOne)
{
    const quint32 types[] = {8, 9, 10, 11, 12, 13, 17, 18, 28, 64, 71, 72, 76, 77, 79, 143, 146, 150};
    for (const quint32 type : types)
        for (const char *count : {"00000001", "10000000", "7ffffff0", "7fffffff", "80000000", "fffffffe"}) {
            SCOPED_TRACE(std::to_string(type) + ' ' + count);
            expectRefused(recordWith(header(type) + fromHex(count)));
        }
}

TEST(hostileRecordsTest, APolygonOrAPenOfTwoThousandMillionPointsIsRefusedUnderEveryName)
{
    const QByteArray zeros(32, '\0');
    QByteArray pen = kelDataFlowRecord{"kelDataBlob", {{"k", QPen(Qt::red)}}}.encoded();
    pen.replace(pen.size() - 12, 4, fromHex("7ffffff0")); // the count of dashes
    expectRefused(pen);
    expectRefused(recordWith(header(71) + fromHex("7ffffff0") + zeros));
    for (const char *name : {"QPolygon", "QPolygonF", "QKeySequence", "QStringList", "QByteArrayList"})
        expectRefused(recordWith(named(name) + fromHex("7ffffff0") + zeros));
    expectRefused(recordWith(header(9) + fromHex("00000001") + header(71) + fromHex("7ffffff0") + zeros));
}

TEST(hostileRecordsTest, NoNestingIsDeeperThanAThousandLevels)
{
    const QByteArray null = fromHex("00000000"
                                    "01"
                                    "ffffffff");
    const struct
    {
        const char *what;
        QByteArray level;
    } nestings[] = {
        {"lists", header(9) + fromHex("00000001")},
        {"maps",
         header(8)
             + fromHex("00000001"
                       "00000002"
                       "0061")},
        {"hashes",
         header(28)
             + fromHex("00000001"
                       "00000002"
                       "0061")},
        {"variants", header(138)},
        {"variants by name", named("QVariant")},
        {"text formats",
         header(79)
             + fromHex("00000000"
                       "00000001"
                       "00000001")},
    };
    for (const auto &[what, level] : nestings) {
        SCOPED_TRACE(what);
        kelDataFlowRecord record;
        const QByteArray deepest = recordWith(level.repeated(1000) + null);
        EXPECT_EQ(record.decode(deepest.constData(), deepest.size()), deepest.size());
        QDataStream in(deepest);
        EXPECT_TRUE(record.read(in));
        for (const int levels : {1001, 30000, 1000000})
            expectRefused(recordWith(level.repeated(levels) + null));
    }
}

TEST(hostileRecordsTest, PicturesTakeNoMoreThanTheirBytesWarrant)
{
    const auto valueBytes = [](const QImage &image) {
        const QByteArray empty = recordWith({});
        return kelDataFlowRecord{"kelDataBlob", {{"k", image}}}.encoded().mid(empty.size());
    };
    const auto listOf = [](int count, const QByteArray &values) {
        return recordWith(header(9) + fromHex("000000") + char(count) + values);
    };
    const QByteArray plain = valueBytes(picture(2000, 2000)); // 16 MB of pixels
    QImage pixels(600, 600, QImage::Format_RGB32); // 1.4 MB that do not pack: their bytes warrant more
    std::mt19937 random(1);
    for (int y = 0; y < pixels.height(); ++y)
        for (int x = 0; x < pixels.width(); ++x)
            pixels.setPixel(x, y, random());
    const QByteArray noise = valueBytes(pixels);

    kelDataFlowRecord record;
    const QByteArray some = listOf(4, plain.repeated(4));
    EXPECT_EQ(record.decode(some.constData(), some.size()), some.size());
    expectRefused(listOf(5, plain.repeated(5)));
    const QByteArray photographs = listOf(6, plain.repeated(4) + noise + plain);
    EXPECT_EQ(record.decode(photographs.constData(), photographs.size()), photographs.size());
}

TEST(hostileRecordsTest, APictureWithoutItsEndOrWithTwoHeadersIsRefused)
{
    const QByteArray record = kelDataFlowRecord{"kelDataBlob", {{"k", picture(3, 2)}}}.encoded();
    QByteArray endless = record;
    endless.replace("IEND", "iend");
    expectRefused(endless);
    QByteArray endlessSides = record;
    endlessSides.replace(record.indexOf("IHDR") + 4, 8, fromHex("fffffffffffffff0"));
    expectRefused(endlessSides);
    QByteArray twice = record;
    twice.replace("pHYs", "IHDR");
    expectRefused(twice);
    QByteArray foreign = record;
    foreign.replace("PNG", "GIF");
    expectRefused(foreign);
}

TEST(hostileRecordsTest, ARegionIsRectanglesInBandsAndNothingElse)
{
    const auto region = [](const std::string &digits) {
        const QByteArray bytes = fromHex(digits);
        return recordWith(header(72) + fromHex("000000") + char(bytes.size()) + bytes);
    };
    const std::string first = "00000000000000000000000400000004";
    const std::string second = "00000008000000000000000900000004";
    kelDataFlowRecord record;
    const QByteArray good = region("0000000a00000002" + first + second);
    EXPECT_EQ(record.decode(good.constData(), good.size()), good.size());
    expectRefused(region("0000000a7ffffff0" + first)); // a loop of as many
    expectRefused(region("0000000a00000002" + second + first)); // not from left to right
    expectRefused(region("0000000600000000")); // a union of nested regions
}

TEST(hostileRecordsTest, AnIconOfAFileOrOfAPlugInIsRefused)
{
    const QByteArray icon = kelDataFlowRecord{"kelDataBlob", {{"k", QIcon(QPixmap(3, 2))}}}.encoded();
    const QByteArray engine = kelDataFlowRecord{"QPixmapIconEngine", {}}.encoded().left(38);
    const int at = icon.indexOf(engine);
    ASSERT_GT(at, 0);
    QByteArray file = icon.left(at + 38)
        + fromHex("00000001"
                  "00000000"
                  "00000008"
                  "002f006400650076"); // "/dev"
    expectRefused(file + QByteArray(16, '\0'));
    QByteArray plugIn = icon;
    plugIn[at + 5] = 'R';
    expectRefused(plugIn);
}

TEST(hostileRecordsTest, AnEasingCurveBringsNoFunctionAlong)
{
    QVariant read;
    kelDataFlowRecord record;
    const QByteArray linear = recordWith(header(29)
                                         + fromHex("00"
                                                   "0000123456789abc"
                                                   "00"));
    EXPECT_EQ(record.decode(linear.constData(), linear.size()), linear.size());
    EXPECT_EQ(record.properties.value("k").value<QEasingCurve>().valueForProgress(0.25), 0.25);
    expectRefused(recordWith(header(29)
                             + fromHex("2f"
                                       "0000123456789abc"
                                       "00"))); // an application's own
}

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
TEST(hostileRecordsTest, RepetitionsOfRepetitionsAreNotMultipliedOut)
{
    const auto with = [](const char *pattern) {
        return kelDataFlowRecord{"kelDataBlob", {{"k", QRegExp(pattern)}}}.encoded();
    };
    kelDataFlowRecord record;
    const QByteArray day = with("\\d{4}-\\d{2}-\\d{2}");
    EXPECT_EQ(record.decode(day.constData(), day.size()), day.size());
    expectRefused(with("((a{99}){10}){11}"));
}
#endif

TEST(hostileRecordsTest, AnUnknownTypeIsAnError)
{
    for (const quint32 type : {30u, 63u, 87u, 126u, 128u, 136u, 153u, 1024u, 1025u, 65536u, 0xffffffffu})
        expectRefused(recordWith(header(type) + QByteArray(100, '\0')));
    for (const char *name : {"", "QObject*", "QNoSuchType", "QModelIndex"})
        expectRefused(recordWith(named(name) + QByteArray(100, '\0')));
}

TEST(hostileRecordsTest, ACountInAnApplicationsOwnTypeIsAnErrorToo)
{
    registerType<kelHostileTestList>("kelHostileTestList");
    expectRefused(recordWith(named("kelHostileTestList") + fromHex("7ffffff0")));
}

TEST(hostileRecordsTest, AnExceptionOfAnApplicationsTypePasses)
{
    registerType<kelHostileTestThrower>("kelHostileTestThrower");
    const QByteArray bytes =
        kelDataFlowRecord{"kelDataBlob", {{"k", QVariant::fromValue(kelHostileTestThrower())}}}.encoded();
    kelDataFlowRecord record;
    EXPECT_THROW(record.decode(bytes.constData(), bytes.size()), int);
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_5_0);
    EXPECT_THROW(record.read(in), int);
    EXPECT_EQ(in.version(), QDataStream::Qt_5_0);
    EXPECT_EQ(in.status(), QDataStream::Ok);
}

TEST(hostileRecordsTest, WithoutAnApplicationOfWindowsPixmapsAreAnErrorAndImagesAreRead)
{
    const QByteArray pixmap = kelDataFlowRecord{"kelDataBlob", {{"k", windowValues()[0].second}}}.encoded();
    std::vector<QByteArray> refused;
    for (const auto &value : windowValues())
        refused.push_back(kelDataFlowRecord{"kelDataBlob", {{"k", value.second}}}.encoded());
    QByteArray byName = pixmap;
    byName.replace(header(65), named("QPixmap"));
    refused.push_back(byName);
    std::vector<QByteArray> taken;
    for (const auto &value : drawingValues())
        taken.push_back(kelDataFlowRecord{"kelDataBlob", {{"k", value.second}}}.encoded());
    testing::GTEST_FLAG(death_test_style) = "fast";
    EXPECT_EXIT(
        {
            QCoreApplication::instance()->~QCoreApplication(); // it stands on the stack of `main`
            kelDataFlowRecord record;
            for (const QByteArray &bytes : refused)
                if (record.decode(bytes.constData(), bytes.size()) != 0)
                    _exit(1);
            for (const QByteArray &bytes : taken)
                if (record.decode(bytes.constData(), bytes.size()) != bytes.size())
                    _exit(2);
            int count = 1;
            char *name = const_cast<char *>("test");
            QCoreApplication application(count, &name);
            for (const QByteArray &bytes : refused)
                if (record.decode(bytes.constData(), bytes.size()) != 0)
                    _exit(3);
            for (const QByteArray &bytes : taken)
                if (record.decode(bytes.constData(), bytes.size()) != bytes.size())
                    _exit(4);
            _exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(hostileRecordsTest, AStreamIsReadExactlyAsFarAsMemory)
{
    // One that gives every byte once and holds none back: what is taken too many is missing behind.
    class Sequential : public QIODevice
    {
    public:
        explicit Sequential(const QByteArray &bytes) : m_bytes(bytes) { }
        bool isSequential() const override { return true; }

    protected:
        qint64 readData(char *data, qint64 size) override
        {
            const qint64 given = std::min(size, m_bytes.size() - m_at);
            std::copy_n(m_bytes.constData() + m_at, given, data);
            m_at += given;
            return given;
        }
        qint64 writeData(const char *, qint64) override { return -1; }

    private:
        QByteArray m_bytes;
        qint64 m_at = 0;
    };
    registerType<kelHostileTestList>("kelHostileTestList");
    QByteArray file;
    int records = 0;
    for (const auto &values : {coreValues(), drawingValues(), windowValues()})
        for (const auto &value : values) {
            file +=
                kelDataFlowRecord{"kelDataBlob", {{"k", value.second}, {"l", QString(3000, 'x')}}}.encoded();
            ++records;
        }
    Sequential device(file);
    ASSERT_TRUE(device.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QDataStream in(&device);
    kelDataFlowRecord record;
    for (int i = 0; i < records; ++i) {
        ASSERT_TRUE(record.read(in)) << i;
        ASSERT_EQ(record.properties.value("l").toString().size(), 3000) << i;
    }
    EXPECT_FALSE(record.read(in));
}

/// Changes valid records at random, the same way in every run, and reads them either way.
TEST(hostileRecordsTest, NoChangeOfARecordEndsTheProcess)
{
    registerType<kelHostileTestList>("kelHostileTestList");
    std::mt19937 random(20240229);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    std::vector<QByteArray> corpus;
    for (const auto &values : {coreValues(), drawingValues(), windowValues()})
        for (const auto &value : values) {
            corpus.push_back(kelDataFlowRecord{"kelDataBlob", {{"k", value.second}}}.encoded());
            corpus.push_back(
                kelDataFlowRecord{"kelDataBlob", {{"l", QVariantList{value.second, 1}}, {"m", 2}}}.encoded());
        }
    static const quint32 types[] = {0,  8,  9,  10, 11, 12, 13, 16, 28,  29,  64,  65,  66,  68,  69,
                                    70, 71, 72, 73, 74, 76, 77, 79, 127, 138, 141, 142, 143, 146, 150};
    static const quint32 counts[] = {0,          1,          2,          0xff,       0xffff,
                                     0x7ffffff0, 0x7fffffff, 0x80000000, 0xfffffffe, 0xffffffff};
    MessageCapture messages;
    for (int run = 0; run < 15000; ++run) {
        QByteArray bytes = corpus[static_cast<size_t>(below(static_cast<int>(corpus.size())))];
        for (int changes = 1 + below(3); changes > 0; --changes) {
            const int at = below(static_cast<int>(bytes.size()));
            const auto put = [&](quint32 number) {
                for (int i = 0; i < 4 && at + i < bytes.size(); ++i)
                    bytes[at + i] = static_cast<char>(number >> (24 - 8 * i));
            };
            switch (below(6)) {
            case 0:
                bytes[at] = static_cast<char>(below(256));
                break;
            case 1:
                put(counts[below(10)]);
                break;
            case 2:
                put(types[below(30)]);
                break;
            case 3:
                bytes.truncate(at + 1);
                break;
            case 4:
                bytes.remove(at, 1 + below(8));
                bytes += ' ';
                break;
            default: // a piece of another
                const QByteArray &other = corpus[static_cast<size_t>(below(static_cast<int>(corpus.size())))];
                bytes.insert(at, other.mid(below(static_cast<int>(other.size())), 1 + below(64)));
            }
        }
        kelDataFlowRecord decoded, streamed;
        const qint64 used = decoded.decode(bytes.constData(), bytes.size());
        QDataStream in(bytes);
        ASSERT_EQ(streamed.read(in), used > 0) << bytes.toHex().toStdString();
        ASSERT_EQ(used > 0 ? in.device()->pos() : 0, used) << bytes.toHex().toStdString();
        ASSERT_EQ(decoded.properties.keys(), streamed.properties.keys()) << bytes.toHex().toStdString();
        messages.take();
    }
}

class hostileFilesTest : public TemporaryFolder
{ };

TEST_F(hostileFilesTest, AnExceptionLeavesNoObjectBehindAndTheReaderGoesOn)
{
    registerType<kelHostileTestThrower>("kelHostileTestThrower");
    const QByteArray good = kelDataFlowRecord{"kelDataBlob", {{"k", 1}}}.encoded();
    write("run.dat",
          good + good
              + kelDataFlowRecord{"kelDataBlob", {{"k", QVariant::fromValue(kelHostileTestThrower())}}}
                    .encoded());
    kelAbstractProcessDataFlowReader reader;
    reader.setDir("run.dat");
    MessageCapture messages;
    EXPECT_THROW(reader.getDataFlow(), int); // the leak checker sees the two objects before
    write("run.dat", good);
    const QList<kelAbstractData *> objects = reader.getDataFlow();
    EXPECT_EQ(objects.size(), 1);
    qDeleteAll(objects);
}

TEST_F(hostileFilesTest, FortyPicturesOfSeventyMegabytesAreNotMade)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's own memory is counted too";
#endif
    const QByteArray one = kelDataFlowRecord{"kelDataBlob", {{"k", picture(4200, 4200)}}}.encoded();
    write("run.dat", one.repeated(40));
    EXPECT_TRUE(inChild([] {
        MessageCapture messages;
        const long before = peakMegabytes();
        kelAbstractProcessDataFlowReader reader;
        reader.setDir("run.dat");
        qDeleteAll(reader.getDataFlow());
        return peakMegabytes() - before < 100;
    }));
}

TEST_F(hostileFilesTest, TheRecordingsOfTheCampaignAreRead)
{
    const QString folder = QStringLiteral(KEL_SOURCE_DIR "/../shared/data/hostile/qpolygon_count");
    if (!QFile::exists(folder))
        GTEST_SKIP() << folder.toStdString() << " is not there";
    kelAbstractProcessDataFlowReader reader;
    reader.setDir(folder + "/dataflow.dat");
    MessageCapture messages;
    const QList<kelAbstractData *> objects = reader.getDataFlow();
    EXPECT_FALSE(objects.isEmpty());
    qDeleteAll(objects);
}
