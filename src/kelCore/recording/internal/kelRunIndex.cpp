#include <kelCore/recording/internal/kelRunIndex.h>

#include <kelCore/recording/internal/kelChecksum.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 chunk = 1 << 20; ///< bytes read at once

quint32 numberOf(const QXmlStreamAttributes &attributes, const char *name)
{
    return attributes.value(QLatin1String(name)).toString().toUInt();
}

qint64 timeOf(const QXmlStreamAttributes &attributes)
{
    const auto part = [&attributes](const char *name) {
        return static_cast<int>(numberOf(attributes, name));
    };
    const QDate date(part("timeYear"), part("timeMonth"), part("timeDay"));
    const QTime time(part("timeHour"), part("timeMin"), part("timeSec"), part("timeMs"));
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch()
                                            : kelDataFlow::FrameOutline::noTime;
}

} // namespace

QByteArray kelDataFlow::bytesAt(int file, qint64 offset, qint64 size)
{
    QByteArray bytes(static_cast<int>(size), Qt::Uninitialized);
    qint64 got = 0;
    while (got < size) {
        const ssize_t part = ::pread(file, bytes.data() + got, static_cast<size_t>(size - got), offset + got);
        if (part < 0 && errno == EINTR)
            continue;
        if (part <= 0)
            break;
        got += part;
    }
    bytes.truncate(static_cast<int>(got));
    return bytes;
}

kelResult kelDataFlow::RunIndex::openFile(int folder, const std::string &name, FileDescriptor &file,
                                          qint64 &size) const
{
    size = 0;
    // Not blocking: a pipe of that name would wait for whoever writes to it.
    file.reset(::openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const QString where = QString::fromStdString(name);
    struct stat status = {};
    if (!file && errno == ENOENT)
        return kelResult();
    if (!file || ::fstat(file.get(), &status) != 0)
        return kelResult::failure(QStringLiteral("cannot be read: %1").arg(systemError()), where);
    if (!S_ISREG(status.st_mode))
        return kelResult::failure(QStringLiteral("is no regular file"), where);
    size = status.st_size;
    return kelResult();
}

kelResult kelDataFlow::RunIndex::open(int folder, const std::string &document)
{
    *this = RunIndex();
    m_name = document;
    // The document first: records are written before it, so that those of its frames are there.
    if (const kelResult opened = openFile(folder, document, m_document, m_documentSize); !opened)
        return opened;
    if (const kelResult opened = openFile(folder, "dataflow.dat", m_records, m_recordsSize); !opened)
        return opened;
    if (!m_document)
        return kelResult();
    useIndexFile(folder);
    return walk();
}

void kelDataFlow::RunIndex::useIndexFile(int folder)
{
    qint64 size = 0;
    FileDescriptor file;
    if (!openFile(folder, indexName, file, size) || size == 0)
        return;
    m_indexDamaged = bytesAt(file.get(), 0, indexRowSize) != indexHeader();
    if (m_indexDamaged)
        return;
    const auto rowAt = [&file](qint64 i) {
        const QByteArray bytes = bytesAt(file.get(), (i + 1) * indexRowSize, indexRowSize);
        return bytes.size() == indexRowSize ? readIndexRow(bytes.constData()) : std::nullopt;
    };
    // A recorder may have gone on since the document was opened: the last row that lies within it.
    qint64 fits = 0;
    for (qint64 end = size / indexRowSize - 1; fits < end;) {
        const qint64 middle = fits + (end - fits) / 2;
        const auto row = rowAt(middle);
        const bool within = row && row->documentEnd() <= m_documentSize && row->recordsEnd() <= m_recordsSize;
        (within ? fits : end) = within ? middle + 1 : middle;
    }
    m_indexDamaged = fits + 1 < size / indexRowSize && !rowAt(fits);
    if (fits == 0)
        return;
    const IndexRow last = *rowAt(fits - 1);
    const bool complete = last.documentEnd() + qint64(documentTail.size()) == m_documentSize
        && last.recordsEnd() == m_recordsSize;
    const QByteArray text = documentBytes(last.frame.offset, last.frame.length);
    if (!complete
        && (text.size() != last.frame.length
            || checksum(text.constData(), static_cast<size_t>(text.size())) != last.documentChecksum))
        return; // of another document
    m_rows = std::move(file);
    m_rowsOnDisk = m_count = fits;
    m_documentEnd = last.documentEnd();
    m_recordsEnd = last.recordsEnd();
    m_objects = m_recordsFound = last.objectsEnd();
}

kelResult kelDataFlow::RunIndex::walk()
{
    FrameWalker walker(m_documentEnd);
    kelResult result;
    const auto found = [this, &result](const FrameOutline &frame) {
        if (result)
            result = add(frame, true);
    };
    bool good = true;
    for (qint64 at = m_documentEnd; good && at < m_documentSize && result; at += chunk) {
        const QByteArray bytes = documentBytes(at, std::min(chunk, m_documentSize - at));
        if (bytes.isEmpty())
            return kelResult::failure(QStringLiteral("cannot be read: %1").arg(systemError()),
                                      QString::fromStdString(m_name));
        good = walker.add({bytes.constData(), static_cast<size_t>(bytes.size())}, found);
    }
    if (!result)
        return result;
    m_documentEnd = walker.goodEnd();
    if (good && walker.atEnd())
        return flush();
    return walkForeign();
}

/// The document is not canonical: what an XML parser finds in it, or, where it finds no XML, what is canonical.
kelResult kelDataFlow::RunIndex::walkForeign()
{
    QFile file;
    if (!file.open(::dup(m_document.get()), QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)
        || !file.seek(0))
        return kelResult::failure(QStringLiteral("cannot be read: %1").arg(file.errorString()),
                                  QString::fromStdString(m_name));
    std::vector<FrameOutline> frames;
    QXmlStreamReader xml(&file);
    const bool isRun = xml.readNextStartElement() && xml.name() == QLatin1String("DataFlow");
    const QString root = xml.name().toString();
    while (isRun && xml.readNextStartElement()) {
        FrameOutline frame;
        frame.offset = -1;
        frame.number = numberOf(xml.attributes(), "frameNumber");
        for (int i = 0; xml.readNextStartElement(); ++i) {
            if (i == 1)
                frame.time = timeOf(xml.attributes());
            else if (i > 1)
                ++frame.objects;
            xml.skipCurrentElement();
        }
        frames.push_back(frame);
    }
    while (!xml.atEnd())
        xml.readNext(); // what stands behind the root must be well-formed too
    if (xml.hasError()) {
        if (m_count > 0 || m_documentEnd > 0) {
            m_form = Form::Torn;
            return flush();
        }
        return kelResult::failure(QStringLiteral("cannot be parsed: %1 in line %2, column %3")
                                      .arg(xml.errorString(), QString::number(xml.lineNumber()),
                                           QString::number(xml.columnNumber())),
                                  QString::fromStdString(m_name));
    }
    if (!isRun)
        return kelResult::failure(
            QStringLiteral("is not a recording: its root is \"%1\", not \"DataFlow\"").arg(root),
            QString::fromStdString(m_name));
    m_form = Form::Foreign;
    m_rows.reset();
    m_tail.reset();
    m_pending.clear();
    m_rowsOnDisk = m_flushed = m_count = m_objects = m_recordsFound = m_recordsEnd = 0;
    m_documentEnd = m_documentSize;
    for (const FrameOutline &frame : frames)
        if (const kelResult added = add(frame, false); !added)
            return added;
    return flush();
}

kelResult kelDataFlow::RunIndex::add(const FrameOutline &frame, bool canonical)
{
    IndexRow row;
    row.frame = frame;
    if (canonical) {
        const QByteArray text = documentBytes(frame.offset, frame.length);
        row.documentChecksum = checksum(text.constData(), static_cast<size_t>(text.size()));
    }
    row.recordsOffset = m_recordsEnd;
    row.firstObject = m_objects;
    m_objects += frame.objects;
    if (m_recordsFound == row.firstObject) { // none was missing before
        kelDataFlowRecord record;
        for (quint32 i = 0; i < frame.objects; ++i) {
            qint64 used = 0;
            for (qint64 wanted = chunk; used == 0; wanted *= 4) {
                const qint64 at = m_recordsEnd - m_windowOffset;
                if (at >= 0 && at < m_window.size())
                    used = record.decode(m_window.constData() + at, m_window.size() - at);
                const bool wasLast = m_windowOffset + m_window.size() >= m_recordsSize && at == 0;
                if (used > 0 || wasLast || m_recordsEnd >= m_recordsSize)
                    break;
                m_windowOffset = m_recordsEnd;
                m_window = recordBytes(m_recordsEnd, std::min(wanted, m_recordsSize - m_recordsEnd));
            }
            if (used == 0)
                break;
            row.recordsChecksum = checksum(m_window.constData() + (m_recordsEnd - m_windowOffset),
                                           static_cast<size_t>(used), row.recordsChecksum);
            row.recordsLength += used;
            m_recordsEnd += used;
            ++m_recordsFound;
        }
    }
    appendIndexRow(m_pending, row);
    ++m_count;
    return m_pending.size() < chunk ? kelResult() : flush();
}

kelResult kelDataFlow::RunIndex::flush()
{
    if (m_pending.isEmpty())
        return kelResult();
    if (!m_tail) {
        const QByteArray place = QFile::encodeName(QDir::tempPath());
        m_tail.reset(::open(place.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
        if (!m_tail) // a file system without nameless files
            m_tail.reset(::fileno(::tmpfile()));
    }
    if (!writeAll(m_tail.get(), m_pending, m_flushed))
        return kelResult::failure(QStringLiteral("no room for a temporary file: %1").arg(systemError()),
                                  QDir::tempPath());
    m_flushed += m_pending.size();
    m_pending.clear();
    return kelResult();
}

kelDataFlow::IndexRow kelDataFlow::RunIndex::row(qint64 i) const
{
    constexpr qint64 rowsAtOnce = 256;
    const qint64 held = m_block.size() / indexRowSize;
    if (i < m_blockBegin || i >= m_blockBegin + held) {
        const bool onDisk = i < m_rowsOnDisk;
        // Whole blocks, so that a walk in either direction reads each but once.
        const qint64 first = onDisk ? 0 : m_rowsOnDisk;
        m_blockBegin = first + (i - first) / rowsAtOnce * rowsAtOnce;
        const qint64 end = std::min(m_blockBegin + rowsAtOnce, onDisk ? m_rowsOnDisk : m_count);
        m_block = bytesAt(onDisk ? m_rows.get() : m_tail.get(),
                          (onDisk ? m_blockBegin + 1 : m_blockBegin - m_rowsOnDisk) * indexRowSize,
                          (end - m_blockBegin) * indexRowSize);
    }
    const qint64 at = (i - m_blockBegin) * indexRowSize;
    if (at + indexRowSize > m_block.size())
        return IndexRow();
    return readIndexRow(m_block.constData() + at).value_or(IndexRow());
}

bool kelDataFlow::RunIndex::headIsWhole() const
{
    const std::string_view head = m_count > 0 ? documentHead : emptyDocument;
    return m_form == Form::Foreign || !m_document
        || documentBytes(0, static_cast<qint64>(head.size()))
        == QByteArray::fromRawData(head.data(), static_cast<int>(head.size()));
}

QByteArray kelDataFlow::RunIndex::documentBytes(qint64 offset, qint64 size) const
{
    return m_document ? bytesAt(m_document.get(), offset, size) : QByteArray();
}

QByteArray kelDataFlow::RunIndex::recordBytes(qint64 offset, qint64 size) const
{
    return m_records ? bytesAt(m_records.get(), offset, size) : QByteArray();
}
