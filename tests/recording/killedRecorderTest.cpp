/// \file
/// A recorder that is killed after each of its system calls.

#include <kelCore/recording/kelRecording.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include "recording/RunScripts.h"
#include "support/TemporaryFolder.h"

#include <QDir>
#include <QDomDocument>

#include <atomic>

#include <csignal>

#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int frameCount = 200;
constexpr int shards = 4; ///< so that several can run at once
// What is on disk between two calls depends neither on the toolkit nor on the sanitizers: there, and where every
// process costs more, each eighth will do.
#if defined(__SANITIZE_ADDRESS__) || QT_VERSION_MAJOR > 5
constexpr int stride = 8 * shards;
#else
constexpr int stride = shards;
#endif

/// Runs `work` in a process of its own until its `calls`-th system call is done, and kills it.
/// \return false when it ended by itself before.
template <class Work> bool killAfter(int calls, const Work &work)
{
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        work();
        _exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
        return false;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    // Each call stops the process twice, before it and behind it.
    for (int stops = 0; stops < 2 * calls;) {
        if (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) != 0 || waitpid(child, &status, 0) != child)
            return false;
        if (!WIFSTOPPED(status))
            return false; // it is done
        stops += WSTOPSIG(status) == (SIGTRAP | 0x80) ? 1 : 0;
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return true;
}

/// Frames that a recorder in another process has reported saved.
class SharedCount
{
public:
    SharedCount()
        : m_count(static_cast<std::atomic<int> *>(mmap(
            nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    { }
    ~SharedCount() { munmap(m_count, sizeof(std::atomic<int>)); }
    std::atomic<int> &operator*() const { return *m_count; }

private:
    std::atomic<int> *m_count;
};

const std::vector<MadeFrame> &frames()
{
    static const std::vector<MadeFrame> made = [] {
        std::vector<MadeFrame> list;
        for (int i = 0; i < frameCount; ++i)
            list.push_back(plainFrame(i, i % 3));
        return list;
    }();
    return made;
}

class KilledRecorderTest : public TemporaryFolder, public testing::WithParamInterface<int>
{
protected:
    /// Records frames behind those that are there, up to the one before `end`.
    static kelResult record(const QString &folder, int end, std::atomic<int> *saved = nullptr)
    {
        kelRecordingOptions options;
        options.mode = kelRecordingOptions::Mode::Append;
        kelRecordingWriter writer;
        kelResult result = writer.open(folder, options);
        for (auto i = static_cast<size_t>(writer.frameCount()); result && i < static_cast<size_t>(end); ++i) {
            result = writer.write(frames()[i].stamp, frames()[i].objects);
            if (result && saved)
                ++*saved;
        }
        return result;
    }
};

TEST_P(KilledRecorderTest, LeavesAWholeRecordingAfterEverySystemCall)
{
    ASSERT_TRUE(done(record(QStringLiteral("whole"), frameCount)));
    const QByteArray document = content(QStringLiteral("whole/dataflow.xml"));
    const QByteArray records = content(QStringLiteral("whole/dataflow.dat"));
    const SharedCount saved;
    int calls = 1 + GetParam();
    for (;; calls += stride) {
        *saved = 0;
        if (!killAfter(calls,
                       [&saved] { static_cast<void>(record(QStringLiteral("run"), frameCount, &*saved)); }))
            break;
        // The document, where there is one, parses and holds what was reported saved.
        const QByteArray left = content(QStringLiteral("run/dataflow.xml"));
        int found = 0;
        if (QFile::exists(QStringLiteral("run/dataflow.xml"))) {
            QDomDocument nodes;
            ASSERT_TRUE(nodes.setContent(left)) << calls;
            found = nodes.documentElement().childNodes().count();
        }
        ASSERT_GE(found, *saved) << calls;
        // Each frame has its records.
        const auto body = left.isEmpty() ? 0 : left.size() - qstrlen("</DataFlow>\n");
        ASSERT_EQ(left.left(static_cast<int>(body)), document.left(static_cast<int>(body))) << calls;
        const QByteArray leftRecords = content(QStringLiteral("run/dataflow.dat"));
        ASSERT_EQ(leftRecords, records.left(leftRecords.size())) << calls;

        // Whoever goes on reaches the bytes of the run that was not interrupted.
        const bool toTheEnd = calls / stride % 4 == 0;
        const int end = toTheEnd ? frameCount : std::min(found + 3, frameCount);
        ASSERT_TRUE(done(record(QStringLiteral("run"), end))) << calls;
        const QByteArray resumed = content(QStringLiteral("run/dataflow.xml"));
        if (toTheEnd) {
            ASSERT_EQ(resumed, document) << calls;
            ASSERT_EQ(content(QStringLiteral("run/dataflow.dat")), records) << calls;
        }
        const auto resumedBody = static_cast<int>(resumed.size() - qstrlen("</DataFlow>\n"));
        ASSERT_EQ(resumed.left(resumedBody), document.left(resumedBody)) << calls;
        ASSERT_EQ(QDir(QStringLiteral("run")).entryList(QDir::Files | QDir::Hidden).size(), 3) << calls;
        QDir(QStringLiteral("run")).removeRecursively();
    }
    // The run makes several calls for each frame.
    EXPECT_GT(calls, 5 * frameCount);
}

/// How a run in segments is recorded when it is killed.
struct SegmentedCase
{
    const char *name;
    void (*set)(kelRecordingOptions &options);
};

const SegmentedCase segmentedCases[] = {
    {"Plain", [](kelRecordingOptions &) {}},
    {"Compressed", [](kelRecordingOptions &options) { options.compress = true; }},
    {"KeepingSome", [](kelRecordingOptions &options) { options.keepTime = 10 * 40; }},
    {"KeepingSomeCompressed",
     [](kelRecordingOptions &options) {
         options.keepTime = 10 * 40;
         options.compress = true;
     }},
};

class KilledSegmentsTest : public TemporaryFolder,
                           public testing::WithParamInterface<std::tuple<SegmentedCase, int>>
{
protected:
    static constexpr int length = 30;
    static constexpr int kept = 10;

    /// Records the frames from `begin` on, in segments of 7.
    static kelResult record(const QString &folder, int begin, int end, std::atomic<int> *saved = nullptr)
    {
        kelRecordingOptions options;
        options.mode = kelRecordingOptions::Mode::Append;
        options.segmentFrames = 7;
        std::get<0>(GetParam()).set(options);
        kelRecordingWriter writer;
        kelResult result = writer.open(folder, options);
        for (auto i = static_cast<size_t>(begin); result && i < static_cast<size_t>(end); ++i) {
            result = writer.write(frames()[i].stamp, frames()[i].objects);
            if (result && saved)
                ++*saved;
        }
        const kelResult closed = writer.close();
        return result ? closed : result;
    }

    /// Everything below the folder, hidden or not, with what is in it.
    static QMap<QString, QByteArray> all(const QString &folder)
    {
        QMap<QString, QByteArray> found;
        const QDir dir(folder);
        for (const QFileInfo &entry :
             dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
            if (!entry.isDir()) {
                found.insert(entry.fileName(), content(entry.filePath()));
                continue;
            }
            const auto below = all(entry.filePath());
            for (auto it = below.cbegin(); it != below.cend(); ++it)
                found.insert(entry.fileName() + QLatin1Char('/') + it.key(), it.value());
        }
        return found;
    }
};

TEST_P(KilledSegmentsTest, LeaveARunThatReadsAfterEverySystemCall)
{
    ASSERT_TRUE(done(record(QStringLiteral("whole"), 0, length)));
    const auto whole = all(QStringLiteral("whole"));
    const bool keepsAll = whole.contains(QStringLiteral("000001/dataflow.idx"));
    const SharedCount saved;
    int calls = 1 + std::get<1>(GetParam());
    for (;; calls += stride) {
        *saved = 0;
        if (!killAfter(calls,
                       [&saved] { static_cast<void>(record(QStringLiteral("run"), 0, length, &*saved)); }))
            break;
        // What is there is read as one run that ends with the last frame, or the one after it.
        int end = 0;
        if (kelRecording::existsIn(QStringLiteral("run"))) {
            kelRecording run;
            ASSERT_TRUE(done(run.open(QStringLiteral("run")))) << calls;
            ASSERT_TRUE(done(run.verify())) << calls;
            const qint64 count = run.frameCount();
            end = count > 0 ? static_cast<int>(run.frame(count - 1).number) + 1 : 0;
            for (qint64 i = 0; i < count; ++i)
                ASSERT_EQ(run.frame(i).number, quint32(end - count + i)) << calls;
            ASSERT_GE(count, keepsAll ? end : std::min(end, kept)) << calls;
        }
        ASSERT_GE(end, *saved) << calls;
        ASSERT_LE(end, *saved + 1) << calls;

        // Whoever goes on leaves what a run that was not interrupted leaves.
        ASSERT_TRUE(done(record(QStringLiteral("run"), end, length))) << calls;
        const auto resumed = all(QStringLiteral("run"));
        ASSERT_EQ(resumed.keys(), whole.keys()) << calls << resumed.keys().join(' ').toStdString();
        ASSERT_EQ(resumed, whole) << calls;
        QDir(QStringLiteral("run")).removeRecursively();
    }
    EXPECT_GT(calls, 5 * length);
}

INSTANTIATE_TEST_SUITE_P(Cases, KilledSegmentsTest,
                         testing::Combine(testing::ValuesIn(segmentedCases), testing::Range(0, shards)),
                         [](const auto &one) {
                             return std::get<0>(one.param).name + std::to_string(std::get<1>(one.param));
                         });

INSTANTIATE_TEST_SUITE_P(Shards, KilledRecorderTest, testing::Range(0, shards));

} // namespace
