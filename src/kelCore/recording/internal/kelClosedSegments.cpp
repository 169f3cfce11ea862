#include <kelCore/recording/internal/kelClosedSegments.h>

#include <kelCore/recording/internal/kelFolderWriter.h>
#include <kelCore/recording/internal/kelRunIndex.h>
#include <kelCore/recording/internal/kelSegments.h>

#include <QDateTime>
#include <QDir>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr int patience = 5000; ///< milliseconds that a file system may take to free what was removed

bool exists(int folder, const std::string &name)
{
    return ::faccessat(folder, name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

} // namespace

void kelDataFlow::ClosedSegments::addExisting(qint64 number)
{
    {
        FileDescriptor locked;
        if (const kelResult alone = lockFolder(pathOf(number), locked); alone) {
            for (const std::string &name : {documentName, recordsName}) {
                ::unlinkat(locked.get(), SegmentCompressor::partName(name).c_str(), 0);
                if (exists(locked.get(), name)) // it is the plain one that counts
                    ::unlinkat(locked.get(), (name + compressedEnding).c_str(), 0);
            }
            for (const std::string &name : {shadowOf(documentName), asideOf(documentName)})
                ::unlinkat(locked.get(), name.c_str(), 0);
        }
    }
    Segment segment = measured(number);
    segment.lastTime = FrameOutline::noTime;
    const FileDescriptor folder = openFolder(m_run, segmentName(number));
    RunIndex run;
    if (const kelResult opened = run.open(folder.get(), documentName); opened && run.count() > 0) {
        segment.frames = run.count();
        segment.lastTime = run.row(run.count() - 1).frame.time;
    } // what cannot be read counts nothing: it is not this recorder that says so
    append(segment);
}

void kelDataFlow::ClosedSegments::add(qint64 number, qint64 frames, qint64 lastTime)
{
    Segment segment = measured(number);
    segment.frames = frames;
    segment.lastTime = lastTime;
    append(segment);
}

kelDataFlow::ClosedSegments::Segment kelDataFlow::ClosedSegments::measured(qint64 number) const
{
    Segment segment;
    segment.number = number;
    const FileDescriptor folder = openFolder(m_run, segmentName(number));
    segment.bytes = bytesOfSegment(folder.get());
    struct stat status = {};
    for (const std::string &name : {documentName, documentName + compressedEnding})
        if (::fstatat(folder.get(), name.c_str(), &status, 0) == 0)
            segment.changed = qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
    return segment;
}

void kelDataFlow::ClosedSegments::append(const Segment &segment)
{
    m_segments.push_back(segment);
    m_frames += segment.frames;
    m_bytes += segment.bytes;
    if (m_options.compress)
        m_toCompress.push_back(segment.number);
}

kelResult kelDataFlow::ClosedSegments::makeRoom(qint64 openBytes, qint64 frameBytes, qint64 time)
{
    while (m_options.keepTime > 0 && !m_segments.empty() && isTooOld(m_segments.front(), time))
        if (const kelResult removed = removeOldest(QStringLiteral("older than is to be kept")); !removed)
            return removed;

    const auto others = [&] { return openBytes + frameBytes + (m_compressor ? m_compressor->bytes() : 0); };
    if (m_options.keepBytes > 0 && openBytes + frameBytes > m_options.keepBytes)
        return kelResult::failure(
            QStringLiteral("the open segment alone would take %1 bytes, and %2 may be kept")
                .arg(QString::number(openBytes + frameBytes), QString::number(m_options.keepBytes)),
            m_path, QStringLiteral("shorter segments can be removed sooner"));
    while (m_options.keepBytes > 0 && !m_segments.empty() && others() + m_bytes > m_options.keepBytes)
        if (const kelResult removed = removeOldest(QStringLiteral("the run is larger than is to be kept"));
            !removed)
            return removed;
    return m_options.minFree > 0 ? keepFree(frameBytes) : kelResult();
}

/// By the frames' times where there are such, and by the clock of the machine otherwise.
bool kelDataFlow::ClosedSegments::isTooOld(const Segment &segment, qint64 time) const
{
    const bool stamped = segment.lastTime != FrameOutline::noTime && time != FrameOutline::noTime;
    const qint64 age =
        stamped ? time - segment.lastTime : QDateTime::currentMSecsSinceEpoch() - segment.changed;
    return age > m_options.keepTime;
}

kelResult kelDataFlow::ClosedSegments::keepFree(qint64 frameBytes)
{
    const auto freeBytes = [this] {
        struct statvfs status = {};
        return ::fstatvfs(m_run, &status) == 0
            ? static_cast<qint64>(status.f_bavail) * static_cast<qint64>(status.f_frsize)
            : std::numeric_limits<qint64>::max(); // a file system that does not know
    };
    const qint64 wanted = m_options.minFree + frameBytes;
    qint64 free = freeBytes();
    if (free >= wanted) {
        m_sinceRemoved.invalidate();
        return kelResult();
    }
    // Some file systems free by and by: one more segment for each frame until then would be too many.
    if (m_sinceRemoved.isValid() && !m_sinceRemoved.hasExpired(patience))
        return kelResult();
    if (free + m_bytes < wanted)
        return kelResult::failure(
            QStringLiteral("%1 bytes are free on the disk, and %2 are to stay free")
                .arg(QString::number(free), QString::number(m_options.minFree)),
            m_path,
            m_segments.empty() ? QStringLiteral("make room; the frames before are complete")
                               : QStringLiteral("make room: the older segments are too small to help, and "
                                                "were kept; the frames before are complete"));
    while (free < wanted && !m_segments.empty()) {
        free += m_segments.front().bytes;
        if (const kelResult removed = removeOldest(QStringLiteral("too little is free on the disk"));
            !removed)
            return removed;
    }
    if (freeBytes() < wanted)
        m_sinceRemoved.start();
    return kelResult();
}

kelResult kelDataFlow::ClosedSegments::removeOldest(const QString &reason)
{
    const Segment oldest = m_segments.front();
    if (!m_toCompress.empty() && m_toCompress.front() == oldest.number) {
        m_toCompress.pop_front();
        m_compressor.reset();
    }
    if (const kelResult removed = removeSegment(m_path, m_run, oldest.number); !removed)
        return removed;
    m_segments.pop_front();
    m_frames -= oldest.frames;
    m_bytes -= oldest.bytes;
    notice(QStringLiteral("%1: removed, %2 (%3 frames, %4 bytes)")
               .arg(pathOf(oldest.number), reason, QString::number(oldest.frames),
                    QString::number(oldest.bytes)));
    return kelResult();
}

void kelDataFlow::ClosedSegments::compressSome()
{
    if (!m_toCompress.empty())
        compressNext();
}

kelResult kelDataFlow::ClosedSegments::compressAll()
{
    while (!m_toCompress.empty())
        compressNext();
    return m_problem;
}

/// One step for the segment in front of the queue.
void kelDataFlow::ClosedSegments::compressNext()
{
    const qint64 number = m_toCompress.front();
    kelResult result;
    if (!m_compressor) {
        m_compressor = std::make_unique<SegmentCompressor>(pathOf(number));
        result = m_compressor->open();
    }
    if (result)
        result = m_compressor->step();
    if (!result) {
        notice(QStringLiteral("not compressed: %1").arg(result.line()));
        if (m_problem)
            m_problem = result;
    }
    if (result && !m_compressor->isDone())
        return;
    m_compressor.reset();
    m_toCompress.pop_front();
    for (Segment &segment : m_segments)
        if (segment.number == number) {
            const qint64 bytes = bytesOfSegment(openFolder(m_run, segmentName(number)).get());
            m_bytes += bytes - segment.bytes;
            segment.bytes = bytes;
        }
}

void kelDataFlow::ClosedSegments::notice(const QString &line) const
{
    if (m_options.notice)
        m_options.notice(line);
}

QString kelDataFlow::ClosedSegments::pathOf(qint64 number) const
{
    return QDir(m_path).filePath(QString::fromStdString(segmentName(number)));
}
