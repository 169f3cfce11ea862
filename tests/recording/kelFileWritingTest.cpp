// How a recording reaches its two files, through the stages that write them: what stands at their paths may be
// no regular file, or somebody else's too.

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/process/kelAbstractProcessDataWriter.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <chrono>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Data = QSharedPointer<kelAbstractData>;

Data blob(QVariantMap map)
{
    Data result(new kelDataBlob);
    result->setMap(map);
    return result;
}

struct stat statusOf(const char *path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path, &status), 0) << path;
    return status;
}

} // namespace

class kelFileWritingTest : public TemporaryFolder
{
protected:
    kelFileWritingTest()
    {
        OutputCapture output;
        writer.reset(new kelAbstractProcessDataFlowWriter);
        writer->setFilePath(QFile("run.xml"));
    }

    bool writeFrame()
    {
        MessageCapture messages;
        return writer->writeDataFlow() && messages.count("\n frame saved") == 1;
    }

    std::unique_ptr<kelAbstractProcessDataFlowWriter> writer;
};

TEST_F(kelFileWritingTest, AFifoIsWrittenIntoAndStaysAFifo)
{
    ASSERT_EQ(mkfifo("run.xml", 0600), 0);
    std::string received;
    std::thread reader([&received] {
        const int fifo = open("run.xml", O_RDONLY);
        char bytes[100];
        for (ssize_t size; (size = read(fifo, bytes, sizeof bytes)) > 0;)
            received.append(bytes, static_cast<size_t>(size));
        close(fifo);
    });
    MessageCapture messages;
    writer->xmlGen();
    const bool stayed = S_ISFIFO(statusOf("run.xml").st_mode);
    if (!stayed)
        close(open("run.xml", O_WRONLY)); // nobody writes to the reader any more
    if (stayed)
        reader.join();
    else
        reader.detach();
    EXPECT_TRUE(stayed);
    EXPECT_EQ(received, "<DataFlow/>\n");
    EXPECT_EQ(messages.lines().last(), "\n file created");
}

TEST_F(kelFileWritingTest, ADeviceIsWrittenIntoAndStaysADevice)
{
    if (mknod("null", S_IFCHR | 0666, statusOf("/dev/null").st_rdev) != 0)
        GTEST_SKIP() << "devices cannot be made here";
    writer->setFilePath(QFile("null"));
    MessageCapture messages;
    writer->xmlGen();
    EXPECT_TRUE(S_ISCHR(statusOf("null").st_mode));
}

TEST_F(kelFileWritingTest, AFileWithSeveralNamesKeepsThemAll)
{
    ASSERT_TRUE(writeFrame());
    ASSERT_EQ(link("run.xml", "other.xml"), 0);
    const ino_t file = statusOf("run.xml").st_ino;
    for (int frames = 2; frames < 5; ++frames) {
        ASSERT_TRUE(writeFrame());
        EXPECT_EQ(statusOf("run.xml").st_ino, file);
        EXPECT_EQ(statusOf("other.xml").st_ino, file);
        EXPECT_EQ(content("other.xml").count("<Frame "), frames);
    }
    MessageCapture messages;
    writer->xmlGen(); // and a shorter content leaves nothing behind
    EXPECT_EQ(content("other.xml"), "<DataFlow/>\n");
}

TEST_F(kelFileWritingTest, AFullDiskLeavesAFileWithSeveralNamesAsItIs)
{
    ASSERT_TRUE(writeFrame());
    ASSERT_EQ(link("run.xml", "other.xml"), 0);
    const QByteArray before = content("run.xml");
    EXPECT_TRUE(inChild([&] {
        MessageCapture messages;
        return limitFileSize(before.size() + 20) && writer->writeDataFlow() && messages.lines().isEmpty();
    }));
    EXPECT_EQ(content("run.xml"), before);
}

TEST_F(kelFileWritingTest, ALinkToAFileWithSeveralNamesStaysALink)
{
    write("one.xml", "<DataFlow/>\n");
    ASSERT_EQ(link("one.xml", "two.xml"), 0);
    ASSERT_EQ(symlink("one.xml", "run.xml"), 0);
    ASSERT_TRUE(writeFrame());
    EXPECT_TRUE(QFileInfo("run.xml").isSymLink());
    EXPECT_EQ(content("two.xml").count("<Frame "), 1);
}

TEST_F(kelFileWritingTest, AReadOnlyFileWithSeveralNamesStaysAsItIs)
{
    ASSERT_TRUE(writeFrame());
    ASSERT_EQ(link("run.xml", "other.xml"), 0);
    const QByteArray before = content("run.xml");
    ASSERT_EQ(chmod("run.xml", 0444), 0);
    ASSERT_EQ(chmod(".", 0777), 0);
    EXPECT_TRUE(inChild([&] {
        MessageCapture messages;
        return becomeNobody() && writer->writeDataFlow() && messages.lines().isEmpty();
    }));
    EXPECT_EQ(content("run.xml"), before);
}

/// Another process that is appending while a full disk takes a part of a record.
TEST_F(kelFileWritingTest, WhatOthersAppendBehindAPartOfARecordIsNotCut)
{
    kelAbstractProcessDataWriter records;
    records.setData(blob({{"k", QString(500, 'x')}}));
    ASSERT_TRUE(records.writeDataBin());
    const auto record = content("dataflow.dat").size();
    const qint64 full = record + record / 2;

    const int other = open("dataflow.dat", O_WRONLY | O_APPEND);
    ASSERT_EQ(flock(other, LOCK_SH), 0);
    bool refused = false;
    std::thread recorder(
        [&] { refused = inChild([&] { return limitFileSize(full) && !records.writeDataBin(); }); });
    for (int i = 0; i < 500 && statusOf("dataflow.dat").st_size < full; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(::write(other, "other", 5), 5);
    flock(other, LOCK_UN);
    recorder.join();
    close(other);
    EXPECT_TRUE(refused);
    EXPECT_TRUE(content("dataflow.dat").endsWith("other"));
    EXPECT_EQ(content("dataflow.dat").size(), full + 5);
}

TEST_F(kelFileWritingTest, APartOfARecordIsCutOnceTheOtherAppendersAreDone)
{
    kelAbstractProcessDataWriter records;
    records.setData(blob({{"k", QString(500, 'x')}}));
    ASSERT_TRUE(records.writeDataBin());
    const QByteArray before = content("dataflow.dat");
    const qint64 full = before.size() + before.size() / 2;

    const int other = open("dataflow.dat", O_WRONLY | O_APPEND);
    ASSERT_EQ(flock(other, LOCK_SH), 0);
    bool refused = false;
    std::thread recorder(
        [&] { refused = inChild([&] { return limitFileSize(full) && !records.writeDataBin(); }); });
    for (int i = 0; i < 500 && statusOf("dataflow.dat").st_size < full; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(statusOf("dataflow.dat").st_size, full); // nothing is cut while somebody appends
    flock(other, LOCK_UN);
    recorder.join();
    close(other);
    EXPECT_TRUE(refused);
    EXPECT_EQ(content("dataflow.dat"), before);
}

TEST_F(kelFileWritingTest, AppendersDoNotKeepOneAnotherWaiting)
{
    write("dataflow.dat", "");
    const int other = open("dataflow.dat", O_WRONLY | O_APPEND);
    ASSERT_EQ(flock(other, LOCK_SH), 0);
    kelAbstractProcessDataWriter records;
    records.setData(blob({{"k", 1}}));
    EXPECT_TRUE(records.writeDataBin());
    close(other);
}
