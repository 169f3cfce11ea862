#include <kelCore/recording/internal/kelRunIndex.h>

#include <kelCore/recording/internal/kelChecksum.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QXmlStreamReader>

#include <algorithm>

#include <cstdio>

#include <fcntl.h>

namespace {

constexpr qint64 chunk = 1 << 20; ///< bytes read at once
constexpr qint64 longestRecord = 1 << 28; ///< bytes; what claims to be longer is damaged

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

/// A file's bytes, for a parser.
class SourceDevice : public QIODevice
{
public:
    explicit SourceDevice(const kelDataFlow::ByteSource &source) : m_source(source)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }
    bool atEnd() const override { return m_at >= m_source.size(); }

private:
    qint64 readData(char *data, qint64 size) override
    {
        const QByteArray bytes = m_source.bytes(m_at, size);
        std::copy(bytes.cbegin(), bytes.cend(), data);
        m_at += bytes.size();
        return bytes.isEmpty() && size > 0 ? -1 : bytes.size();
    }
    qint64 writeData(const char *, qint64) override { return -1; }

    const kelDataFlow::ByteSource &m_source;
    qint64 m_at = 0;
};

} // namespace

kelResult kelDataFlow::RunIndex::open(int folder, const std::string &document)
{
    *this = RunIndex();
    m_name = document;
    // The document first: records are written before it, so that those of its frames are there.
    if (const kelResult opened = openSource(folder, document, m_document); !opened)
        return opened;
    if (const kelResult opened = openSource(folder, "dataflow.dat", m_records); !opened)
        return opened;
    m_documentSize = m_document ? m_document->size() : 0;
    m_recordsSize = m_records ? m_records->size() : 0;
    if (!m_document)
        return kelResult();
    useIndexFile(folder);
    return walk();
}

void kelDataFlow::RunIndex::useIndexFile(int folder)
{
    qint64 size = 0;
    FileDescriptor file;
    if (!openRegular(folder, indexName, file, size) || size == 0)
        return;
    m_indexDamaged = bytesAt(file.get(), 0, indexRowSize) != indexHeader();
    if (m_indexDamaged)
        return;
    const auto rowAt = [&file](qint64 i) {
        const QByteArray bytes = bytesAt(file.get(), (i + 1) * indexRowSize, indexRowSize);
        return bytes.size() == indexRowSize ? readIndexRow(bytes.constData()) : std::nullopt;
    };
    // A recorder may have gone on since the document was opened: the last row that lies within it.
    const auto isWithin = [this, &rowAt](qint64 i) {
        const auto row = rowAt(i);
        return row && row->documentEnd() <= m_documentSize && row->recordsEnd() <= m_recordsSize;
    };
    qint64 fits = 0;
    qint64 end = size / indexRowSize - 1;
    if (end > 0 && isWithin(end - 1)) // nobody is recording: most often so
        fits = end;
    while (fits < end) {
        const qint64 middle = fits + (end - fits) / 2;
        const bool within = isWithin(middle);
        (within ? fits : end) = within ? middle + 1 : middle;
    }
    m_indexDamaged = fits + 1 < size / indexRowSize && !rowAt(fits);
    if (fits == 0)
        return;
    const IndexRow last = *rowAt(fits - 1);
    const bool complete = last.documentEnd() + qint64(documentTail.size()) == m_documentSize
        && last.recordsEnd() == m_recordsSize;
    if (!complete) {
        const QByteArray text = documentBytes(last.frame.offset, last.frame.length);
        if (text.size() != last.frame.length
            || checksum(text.constData(), static_cast<size_t>(text.size())) != last.documentChecksum)
            return; // of another document
    }
    m_rows = std::move(file);
    m_rowsOnDisk = m_count = fits;
    m_documentEnd = last.documentEnd();
    m_recordsEnd = last.recordsEnd();
    m_objects = m_recordsFound = last.objectsEnd();
}

kelResult kelDataFlow::RunIndex::walk()
{
    // An index that fits to the byte says enough: the last line of each compressed segment would cost more
    // than all else when a run is opened.
    if (m_document->isCompressed() && m_count > 0
        && m_documentEnd + qint64(documentTail.size()) == m_documentSize)
        return kelResult();
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

/// Gives the frames that an XML parser finds. \param isXml false when the document cannot be parsed.
kelResult kelDataFlow::RunIndex::parse(const std::function<void(const FrameOutline &)> &found,
                                       bool &isXml) const
{
    SourceDevice device(*m_document);
    QXmlStreamReader xml(&device);
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
        if (!xml.hasError())
            found(frame);
    }
    while (!xml.atEnd())
        xml.readNext(); // what stands behind the root must be well-formed too
    isXml = !xml.hasError();
    const QString where = QString::fromStdString(m_name);
    if (!isXml)
        return kelResult::failure(QStringLiteral("cannot be parsed: %1 in line %2, column %3")
                                      .arg(xml.errorString(), QString::number(xml.lineNumber()),
                                           QString::number(xml.columnNumber())),
                                  where);
    return isRun
        ? kelResult()
        : kelResult::failure(
            QStringLiteral("is not a recording: its root is \"%1\", not \"DataFlow\"").arg(root), where);
}

/// The document is not canonical: what an XML parser finds in it, or, where it finds no XML, what is canonical.
kelResult kelDataFlow::RunIndex::walkForeign()
{
    bool isXml = false;
    const kelResult parsed = parse([](const FrameOutline &) {}, isXml);
    if (!isXml && (m_count > 0 || m_documentEnd > 0)) {
        m_form = Form::Torn;
        return flush();
    }
    if (!parsed)
        return parsed;
    m_form = Form::Foreign;
    m_rows.reset();
    m_tail.reset();
    m_pending.clear();
    m_rowsOnDisk = m_flushed = m_count = m_objects = m_recordsFound = m_recordsEnd = 0;
    m_documentEnd = m_documentSize;
    // Once more, for a document of any length: its frames are not kept in memory.
    kelResult result;
    const kelResult again = parse(
        [this, &result](const FrameOutline &frame) {
            if (result)
                result = add(frame, false);
        },
        isXml);
    if (!again || !result)
        return result ? again : result;
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
            for (qint64 wanted = chunk;; wanted *= 4) {
                const qint64 at = m_recordsEnd - m_windowOffset;
                if (at >= 0 && at < m_window.size())
                    used = record.decode(m_window.constData() + at, m_window.size() - at);
                const bool wasLast = m_windowOffset + m_window.size() >= m_recordsSize && at == 0;
                if (used > 0 || wasLast || m_recordsEnd >= m_recordsSize || wanted > longestRecord)
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
    if (m_window.size() > 4 * chunk)
        m_window = QByteArray(); // memory is not kept for the one large record
    if (m_pending.isEmpty())
        return kelResult();
    if (!m_tail) {
        const QByteArray place = QFile::encodeName(QDir::tempPath());
        m_tail.reset(::open(place.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
        if (FILE *const file = m_tail ? nullptr : ::tmpfile()) { // a file system without nameless files
            m_tail.reset(::fcntl(::fileno(file), F_DUPFD_CLOEXEC, 0));
            ::fclose(file);
        }
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

bool kelDataFlow::RunIndex::endsAreWhole() const
{
    if (m_form == Form::Foreign || !m_document)
        return true;
    const auto holds = [this](qint64 offset, std::string_view text) {
        return documentBytes(offset, static_cast<qint64>(text.size()))
            == QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
    };
    return m_count > 0 ? holds(0, documentHead) && holds(m_documentEnd, documentTail)
                       : holds(0, emptyDocument);
}

QByteArray kelDataFlow::RunIndex::documentBytes(qint64 offset, qint64 size) const
{
    return m_document ? m_document->bytes(offset, size) : QByteArray();
}

QByteArray kelDataFlow::RunIndex::recordBytes(qint64 offset, qint64 size) const
{
    return m_records ? m_records->bytes(offset, size) : QByteArray();
}

QString kelDataFlow::RunIndex::problem() const
{
    for (const auto *source : {&m_document, &m_records})
        if (*source && !(*source)->problem().isEmpty())
            return (*source)->problem();
    return QString();
}
