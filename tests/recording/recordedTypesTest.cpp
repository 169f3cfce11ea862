// Every type that a record can hold: the bytes are the toolkit's, and are read back either way.

#include <kelCore/recording/kelDataFlowRecord.h>

#include "recording/recordedTypes.h"
#include "support/Capture.h"

namespace {

QByteArray ofTheToolkit(const QVariant &value)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_4_8);
    out << value;
    return bytes;
}

QByteArray recorded(const QVariant &value)
{
    QString problem;
    const QByteArray bytes = kelDataFlowRecord{"kelDataBlob", {{"k", value}}}.encoded(&problem);
    EXPECT_EQ(problem, QString());
    const QByteArray head = kelDataFlowRecord{"kelDataBlob", {{"k", QVariant()}}}.encoded();
    return bytes.mid(head.size() - 9); // behind the key
}

/// The value that a record with these bytes of a value gives, from memory and from a stream; none when it
/// is not whole.
bool readBack(const QByteArray &bytes, QVariant *value, const char *behind = "behind")
{
    QByteArray record = kelDataFlowRecord{"kelDataBlob", {{"k", QVariant()}}}.encoded();
    record.chop(9);
    record += bytes;
    kelDataFlowRecord decoded, streamed;
    const bool whole = decoded.decode(record.constData(), record.size()) == record.size();
    QDataStream in(record + behind);
    EXPECT_EQ(streamed.read(in), whole);
    if (whole) {
        EXPECT_EQ(in.device()->pos(), record.size());
        EXPECT_EQ(recorded(decoded.properties.value("k")).toHex().toStdString(),
                  recorded(streamed.properties.value("k")).toHex().toStdString());
    }
    *value = decoded.properties.value("k");
    return whole;
}

void expectSameBytes(const std::vector<std::pair<std::string, QVariant>> &values)
{
    for (const auto &[name, value] : values) {
        SCOPED_TRACE(name);
        const QByteArray bytes = recorded(value);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        const bool otherOrder = name == "map" || name == "textFormat";
#else
        const bool otherOrder = false;
#endif
        if (name != "hash" && !otherOrder) { // whose order is the toolkit's own
            EXPECT_EQ(bytes.toHex().toStdString(), ofTheToolkit(value).toHex().toStdString());
        }

        QVariant read;
        ASSERT_TRUE(readBack(bytes, &read));
        EXPECT_EQ(read.userType(), value.userType());
        EXPECT_EQ(recorded(read).toHex().toStdString(), bytes.toHex().toStdString());
    }
}

/// No part of the value's bytes is a value, and no byte more is taken.
void expectNoTruncationIsRead(const std::vector<std::pair<std::string, QVariant>> &values)
{
    MessageCapture messages;
    for (const auto &[name, value] : values) {
        const QByteArray bytes = recorded(value);
        for (int size = 0; size < bytes.size(); size += 1 + size / 100) {
            QVariant read;
            ASSERT_FALSE(readBack(bytes.left(size), &read, "")) << name << ' ' << size;
        }
    }
}

} // namespace

TEST(recordedTypesTest, TheBytesOfCoreTypesAreTheToolkitsAndAreReadBack) { expectSameBytes(coreValues()); }
TEST(recordedTypesTest, TheBytesOfDrawingTypesAreTheToolkitsAndAreReadBack)
{
    expectSameBytes(drawingValues());
}
TEST(recordedTypesTest, TheBytesOfTypesOfWindowsAreTheToolkitsAndAreReadBack)
{
    expectSameBytes(windowValues());
}

TEST(recordedTypesTest, NoTruncationOfAnyTypeIsRead)
{
    expectNoTruncationIsRead(coreValues());
    expectNoTruncationIsRead(drawingValues());
    expectNoTruncationIsRead(windowValues());
}

TEST(recordedTypesTest, EqualValuesComeBackEqual)
{
    for (const auto &[name, value] : coreValues()) {
        QVariant read;
        ASSERT_TRUE(readBack(recorded(value), &read)) << name;
        EXPECT_EQ(read, value) << name;
        EXPECT_EQ(read.isNull(), value.isNull()) << name;
    }
}

TEST(recordedTypesTest, ANullValueKeepsItsFlagAndItsType)
{
    for (const auto &[name, value] : coreValues()) {
        if (!value.isValid() || name == "nothing" || name == "easing")
            continue; // the toolkit's empty curve holds the address of a function
        SCOPED_TRACE(name);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        const QVariant null{QMetaType(value.metaType())};
#else
        const QVariant null(static_cast<QVariant::Type>(value.userType()));
#endif
        const QByteArray bytes = recorded(null);
        EXPECT_EQ(bytes.toHex().toStdString(), ofTheToolkit(null).toHex().toStdString());
        QVariant read;
        ASSERT_TRUE(readBack(bytes, &read));
        EXPECT_EQ(read.userType(), null.userType());
        EXPECT_EQ(recorded(read).toHex().toStdString(), bytes.toHex().toStdString());
    }
}

TEST(recordedTypesTest, ABuiltInTypeUnderItsNameIsTheSameType)
{
    const QByteArray value = recorded(QPoint(3, 4)).mid(5);
    QVariant read;
    ASSERT_TRUE(readBack(fromHex("0000007f"
                                 "00"
                                 "00000007")
                             + QByteArray("QPoint", 7) + value,
                         &read));
    EXPECT_EQ(read, QPoint(3, 4));
}

TEST(recordedTypesTest, AStreamsByteOrderAndPrecisionAreItsOwn)
{
    for (const auto &[name, value] : coreValues()) {
        if (name == "hash" || name == "map" || name == "variant" || name == "easing")
            continue; // whose order is the toolkit's, and whose numbers lose digits
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_4_8);
        out.setByteOrder(QDataStream::LittleEndian);
        out.setFloatingPointPrecision(QDataStream::SinglePrecision);
        out << QString("kelDataBlob") << quint32(1) << QString("k") << value;
        QDataStream in(bytes);
        in.setByteOrder(QDataStream::LittleEndian);
        in.setFloatingPointPrecision(QDataStream::SinglePrecision);
        kelDataFlowRecord record;
        ASSERT_TRUE(record.read(in)) << name;
        EXPECT_TRUE(in.atEnd()) << name;
        const QVariant read = record.properties.value("k");
        EXPECT_EQ(read.userType(), value.userType()) << name;
        EXPECT_EQ(read, name == "double" ? QVariant(double(-0.1f)) : value) << name;
    }
}
