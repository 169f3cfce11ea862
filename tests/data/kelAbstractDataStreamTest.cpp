#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelAbstractDataStream_p.h>
#include <kelCore/data/kelDataBlob.h>

#include "support/Capture.h"

#include <memory>

namespace {

const char copyTrace[] = "virtual void kelAbstractDataStream::copy(const nubAbstractData&)";
const char cloneTrace[] = "virtual kelAbstractDataStream* kelAbstractDataStream::clone()";
const char assignTrace[] =
    "kelAbstractDataStream& kelAbstractDataStream::operator=(const kelAbstractDataStream&)";
const char unlikeWarning[] = "Copy can't be done at the kelAbstractDataStream level.";

/// A concrete stream whose getters answer for the file it plays, and whose private part the tests can see.
class FileStream : public kelAbstractDataStream
{
    Q_OBJECT

public:
    using kelAbstractDataStream::device;
    QString device() const override { return "/the/file"; }
    nubAbstractDataPrivate &state() { return static_cast<nubAbstractDataPrivate &>(*nub_d); }
};

class Blob : public kelDataBlob
{
public:
    nubAbstractDataPrivate &state() { return static_cast<nubAbstractDataPrivate &>(*nub_d); }
};

void fill(kelAbstractDataStream &stream)
{
    stream.url(QUrl("rtsp://camera/1"));
    stream.device("/dev/video0");
    stream.streamName("door");
    kelAbstractDataCalibration calibration;
    calibration.setReferentialName("room");
    calibration.setIntrinsicMatrix(cv::Mat::eye(3, 4, CV_64F));
    stream.setCameraCalibration(calibration);
}

void expectFilled(const kelAbstractDataStream &stream)
{
    EXPECT_EQ(stream.url(), QUrl("rtsp://camera/1"));
    EXPECT_EQ(stream.device(), "/dev/video0");
    EXPECT_EQ(stream.streamName(), "door");
    EXPECT_EQ(stream.getCameraCalibration().getReferentialName(), "room");
    EXPECT_EQ(stream.getCameraCalibration().getIntrinsicMatrix().rows, 3);
}

void expectFresh(const kelAbstractDataStream &stream)
{
    EXPECT_FALSE(stream.url().isValid());
    EXPECT_TRUE(stream.url().isEmpty());
    EXPECT_EQ(stream.device(), "Default");
    EXPECT_EQ(stream.streamName(), "Default");
    EXPECT_EQ(stream.getCameraCalibration().getReferentialName(), "Default");
    EXPECT_EQ(stream.getCameraCalibration().getIntrinsicMatrix().size(), cv::Size(4, 4));
}

} // namespace

TEST(kelAbstractDataStreamTest, AFreshDescriptorHasDefaultNamesAndNoAddress)
{
    const kelAbstractDataStream stream;
    expectFresh(stream);
    EXPECT_EQ(stream.identifier(), "kelAbstractDataStream");
    EXPECT_EQ(stream.parent(), nullptr);
    EXPECT_EQ(qobject_cast<const kelAbstractData *>(static_cast<const QObject *>(&stream)), nullptr);
}

TEST(kelAbstractDataStreamTest, AnEmptyDeviceIsRejected)
{
    for (const QString &empty : {QString(), QString("")}) {
        kelAbstractDataStream stream;
        MessageCapture messages;
        stream.device(empty);
        EXPECT_EQ(messages.lines(), QStringList{"You have provided a wrong device string."});
        EXPECT_EQ(stream.device(), "Default");
    }
}

TEST(kelAbstractDataStreamTest, ANewDeviceIsStoredInSilence)
{
    kelAbstractDataStream stream;
    const LogLevel level(0);
    MessageCapture messages;
    stream.device("/dev/video0");
    EXPECT_EQ(stream.device(), "/dev/video0");
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, TheSameDeviceAgainIsReported)
{
    kelAbstractDataStream stream;
    MessageCapture messages;
    stream.device("Default");
    EXPECT_EQ(messages.take(), QStringList{"You have already provided this device string."});
    stream.device("default");
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(stream.device(), "default");
    stream.device("default");
    EXPECT_EQ(messages.lines(), QStringList{"You have already provided this device string."});
}

TEST(kelAbstractDataStreamTest, AnInvalidAddressIsRejected)
{
    kelAbstractDataStream stream;
    stream.url(QUrl("rtsp://camera/1"));
    for (const QUrl &invalid : {QUrl(), QUrl("http://[bad"), QUrl("http://host:port")}) {
        MessageCapture messages;
        stream.url(invalid);
        EXPECT_EQ(messages.lines(), QStringList{"You have provided a wrong url."});
        EXPECT_EQ(stream.url(), QUrl("rtsp://camera/1"));
    }
}

TEST(kelAbstractDataStreamTest, TheSameAddressAgainIsReported)
{
    kelAbstractDataStream stream;
    const LogLevel level(0);
    MessageCapture messages;
    stream.url(QUrl("rtsp://camera/1"));
    EXPECT_TRUE(messages.lines().isEmpty());
    stream.url(QUrl("rtsp://camera/1"));
    EXPECT_EQ(messages.take(), QStringList{"You have already provided this url."});
    EXPECT_EQ(stream.url(), QUrl("rtsp://camera/1"));
    stream.url(QUrl("rtsp://camera/2"));
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(stream.url(), QUrl("rtsp://camera/2"));
}

TEST(kelAbstractDataStreamTest, TheAddressIsGivenByReference)
{
    kelAbstractDataStream stream;
    const QUrl &address = stream.url();
    stream.url(QUrl("rtsp://camera/1"));
    EXPECT_EQ(address, QUrl("rtsp://camera/1"));
}

TEST(kelAbstractDataStreamTest, RejectionsAreOfLevel256AndRepetitionsOfLevel17)
{
    kelAbstractDataStream stream;
    stream.url(QUrl("rtsp://camera/1"));
    for (const int current : {0, 17, 18, 256, 257}) {
        const LogLevel level(current);
        MessageCapture messages;
        stream.device("");
        stream.url(QUrl());
        EXPECT_EQ(messages.take().size(), current <= 256 ? 2 : 0) << current;
        stream.device("Default");
        stream.url(QUrl("rtsp://camera/1"));
        EXPECT_EQ(messages.take().size(), current <= 17 ? 2 : 0) << current;
    }
}

TEST(kelAbstractDataStreamTest, TheStreamNameIsStoredUnchecked)
{
    kelAbstractDataStream stream;
    const LogLevel level(0);
    MessageCapture messages;
    for (const QString &name : {QString("door"), QString("door"), QString()}) {
        stream.streamName(name);
        EXPECT_EQ(stream.streamName(), name);
    }
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, TheCalibrationIsAssignedAndGivenAsACopy)
{
    kelAbstractDataStream stream;
    kelAbstractDataCalibration calibration;
    calibration.setReferentialName("room");
    const cv::Mat intrinsic = cv::Mat::eye(3, 4, CV_64F);
    calibration.setIntrinsicMatrix(intrinsic);
    calibration.addSpecificProperty("k", 1);
    MessageCapture messages;
    stream.setCameraCalibration(calibration);
    EXPECT_TRUE(messages.lines().isEmpty());

    kelAbstractDataCalibration given = stream.getCameraCalibration();
    EXPECT_EQ(given.getReferentialName(), "room");
    EXPECT_EQ(given.getIntrinsicMatrix().data, intrinsic.data);
    EXPECT_TRUE(given.getSpecificProperties().isEmpty());
    given.setReferentialName("changed");
    calibration.setReferentialName("changed too");
    EXPECT_EQ(stream.getCameraCalibration().getReferentialName(), "room");
}

TEST(kelAbstractDataStreamTest, ACalibrationOfAnotherKindIsRefused)
{
    class OtherCalibration : public kelAbstractDataCalibration
    {
    public:
        QString identifier() const override { return "OtherCalibration"; }
    };
    kelAbstractDataStream stream;
    OtherCalibration calibration;
    calibration.setReferentialName("room");
    MessageCapture messages;
    stream.setCameraCalibration(calibration);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_EQ(stream.getCameraCalibration().getReferentialName(), "Default");
}

TEST(kelAbstractDataStreamTest, FrameRateAndResolutionAreLeftToConcreteStreams)
{
    kelAbstractDataStream stream;
    const LogLevel level(1);
    MessageCapture messages;
    EXPECT_EQ(stream.fps(), -1);
    EXPECT_EQ(messages.take(),
              QStringList{
                  defaultNotice("virtual int kelAbstractDataStream::fps() const", "kelAbstractDataStream")});
    stream.fps(25);
    EXPECT_EQ(
        messages.take(),
        QStringList{defaultNotice("virtual void kelAbstractDataStream::fps(int)", "kelAbstractDataStream")});
    EXPECT_TRUE(stream.resolution().isNull());
    EXPECT_EQ(messages.take(),
              QStringList{defaultNotice("virtual QString kelAbstractDataStream::resolution() const",
                                        "kelAbstractDataStream")});
    stream.resolution("640x480");
    EXPECT_EQ(messages.take(),
              QStringList{defaultNotice("virtual void kelAbstractDataStream::resolution(QString)",
                                        "kelAbstractDataStream")});

    EXPECT_EQ(stream.fps(), -1);
    EXPECT_TRUE(stream.resolution().isNull());
}

TEST(kelAbstractDataStreamTest, TheDefaultsAreSilentAboveLevelOne)
{
    kelAbstractDataStream stream;
    const LogLevel level(2);
    MessageCapture messages;
    EXPECT_EQ(stream.fps(), -1);
    stream.fps(25);
    EXPECT_TRUE(stream.resolution().isNull());
    stream.resolution("640x480");
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, TheNoticeNamesTheMostDerivedClass)
{
    const FileStream stream;
    const LogLevel level(1);
    MessageCapture messages;
    EXPECT_EQ(stream.fps(), -1);
    const QString className = QString::fromLatin1(stream.metaObject()->className());
    EXPECT_TRUE(className.endsWith("FileStream"));
    EXPECT_EQ(
        messages.lines(),
        QStringList{"Using default implementation of virtual int kelAbstractDataStream::fps() const for "
                    + className});
}

TEST(kelAbstractDataStreamTest, ACopyCarriesEveryFieldInSilence)
{
    QObject parent;
    kelAbstractDataStream stream;
    stream.setParent(&parent);
    fill(stream);
    const LogLevel level(0);
    MessageCapture messages;
    const kelAbstractDataStream copy(stream);
    EXPECT_TRUE(messages.lines().isEmpty());
    expectFilled(copy);
    EXPECT_EQ(copy.parent(), &parent);
    stream.device("/dev/video1");
    expectFilled(copy);
}

TEST(kelAbstractDataStreamTest, CloneTracesItselfAndCarriesEveryField)
{
    kelAbstractDataStream stream;
    fill(stream);
    MessageCapture messages;
    std::unique_ptr<kelAbstractDataStream> copy;
    {
        const LogLevel level(0);
        copy.reset(stream.clone());
    }
    EXPECT_EQ(messages.take(), QStringList{cloneTrace});
    expectFilled(*copy);
    const LogLevel level(1);
    copy.reset(stream.clone());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, AssignmentTracesItselfAndThenItsCopy)
{
    kelAbstractDataStream from;
    fill(from);
    kelAbstractDataStream to;
    MessageCapture messages;
    {
        const LogLevel level(0);
        EXPECT_EQ(&(to = from), &to);
    }
    EXPECT_EQ(messages.take(), (QStringList{assignTrace, copyTrace}));
    expectFilled(to);
    const LogLevel level(1);
    to = from;
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, AssignmentCallsTheVirtualCopy)
{
    class Counter : public kelAbstractDataStream
    {
    public:
        using kelAbstractDataStream::copy;
        void copy(const nubAbstractData &) override { ++copies; }
        int copies = 0;
    };
    Counter counter;
    static_cast<kelAbstractDataStream &>(counter) = kelAbstractDataStream();
    EXPECT_EQ(counter.copies, 1);
}

TEST(kelAbstractDataStreamTest, TheFrameworksCopyForwardsData)
{
    kelAbstractDataStream from;
    fill(from);
    kelAbstractDataStream to;
    const LogLevel level(0);
    MessageCapture messages;
    to.copy(static_cast<const nubAbstractObject &>(from));
    EXPECT_EQ(messages.lines(), QStringList{copyTrace});
    expectFilled(to);
}

TEST(kelAbstractDataStreamTest, CopyingItselfStopsAfterTheTrace)
{
    kelAbstractDataStream stream;
    fill(stream);
    const LogLevel level(0);
    MessageCapture messages;
    stream.copy(stream);
    EXPECT_EQ(messages.lines(), QStringList{copyTrace});
    expectFilled(stream);
}

TEST(kelAbstractDataStreamTest, CopyingItselfReadsNoGetter)
{
    FileStream stream;
    stream.kelAbstractDataStream::device("/dev/video0");
    stream.copy(stream);
    EXPECT_EQ(stream.kelAbstractDataStream::device(), "/dev/video0");
}

TEST(kelAbstractDataStreamTest, CopyReadsTheOthersVirtualGetters)
{
    FileStream from;
    from.kelAbstractDataStream::device("/dev/video0");
    from.state().path = "path";
    from.streamName("door");
    FileStream to;
    kelAbstractDataStream stream;
    MessageCapture messages;
    stream.copy(from);
    EXPECT_EQ(stream.device(), "/the/file");
    EXPECT_EQ(stream.streamName(), "door");
    to.copy(from);
    EXPECT_EQ(to.state().path, "path");
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, ACopyTakesEmptyAndEqualValuesWithoutAWord)
{
    const kelAbstractDataStream fresh;
    kelAbstractDataStream stream;
    fill(stream);
    const LogLevel level(1);
    MessageCapture messages;
    stream = fresh;
    expectFresh(stream);
    stream = fresh;
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataStreamTest, CopyFromDataOfAnotherKindTakesTheFrameworksPartOnly)
{
    FileStream stream;
    stream.streamName("door");
    stream.url(QUrl("rtsp://camera/1"));
    Blob blob;
    blob.state().path = "path";
    MessageCapture messages;
    static_cast<kelAbstractDataStream &>(stream).copy(blob);
    EXPECT_EQ(messages.lines(), QStringList{unlikeWarning});
    EXPECT_EQ(stream.state().path, "path");
    EXPECT_EQ(stream.streamName(), "door");
    EXPECT_EQ(stream.url(), QUrl("rtsp://camera/1"));
}

TEST(kelAbstractDataStreamTest, CopyFromAStreamOfAnotherIdentifierTakesTheFrameworksPartOnly)
{
    class OtherStream : public FileStream
    {
    public:
        QString identifier() const override { return "OtherStream"; }
    };
    OtherStream other;
    other.state().path = "path";
    fill(other);
    FileStream stream;
    stream.streamName("mine");
    for (const int current : {0, 17, 18}) {
        const LogLevel level(current);
        MessageCapture messages;
        stream.copy(other);
        EXPECT_EQ(messages.count(unlikeWarning), current <= 17 ? 1 : 0) << current;
        EXPECT_EQ(messages.count(slicingWarning()), 0);
    }
    EXPECT_EQ(stream.state().path, "path");
    EXPECT_EQ(stream.streamName(), "mine");
    EXPECT_FALSE(stream.url().isValid());
}

TEST(kelAbstractDataStreamTest, CopyFromWhatIsNoDataTracesItselfAndWarns)
{
    kelAbstractDataStream stream;
    fill(stream);
    MessageCapture messages;
    {
        const LogLevel level(0);
        stream.copy(nubAbstractObject());
    }
    EXPECT_EQ(messages.take(), (QStringList{copyTrace, unlikeWarning}));
    expectFilled(stream);
    const LogLevel level(18);
    stream.copy(nubAbstractObject());
    EXPECT_TRUE(messages.lines().isEmpty());
}

#include "kelAbstractDataStreamTest.moc"
