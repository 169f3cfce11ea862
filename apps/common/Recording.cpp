#include "common/Recording.h"

#include "common/Failure.h"
#include "common/RegularFile.h"

#include <kelCore/data/kelDataBlob.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <climits>

namespace {

/// A number as the recording writes it: an unsigned 32-bit one.
quint32 number(const QXmlStreamAttributes &attributes, const char *name)
{
    return attributes.value(QLatin1String(name)).toString().toUInt();
}

QDateTime time(const QXmlStreamAttributes &attributes)
{
    // Numbers beyond 2147483647 count as 0: the year 4294967295 is that of a null time, not one before Christ.
    const auto part = [&attributes](const char *name) {
        return attributes.value(QLatin1String(name)).toString().toInt();
    };
    const QDate date(part("timeYear"), part("timeMonth"), part("timeDay"));
    const QTime time(part("timeHour"), part("timeMin"), part("timeSec"), part("timeMs"));
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

} // namespace

CSynchronizer RecordedFrame::stamp() const
{
    CSynchronizer stamp;
    stamp.setFrameNumber(number);
    stamp.setDateTime(time);
    return stamp;
}

bool Recording::existsIn(const QString &folder)
{
    const QDir dir(folder);
    return dir.exists(documentName()) || dir.exists(recordsName());
}

Recording::Recording(const QString &place)
{
    const QFileInfo info(place);
    if (!info.exists())
        throw Failure(QStringLiteral("there is no recording %1; give its folder or the path of its document")
                          .arg(place));
    const QDir folder = info.isDir() ? QDir(place) : info.dir();
    m_documentPath = info.isDir() ? folder.filePath(documentName()) : place;
    m_recordsPath = folder.filePath(recordsName());
    if (!info.isDir())
        mustBeReadableFile(place, QStringLiteral("document"));
    if (!QFile::exists(m_documentPath) && !QFile::exists(m_recordsPath))
        throw Failure(
            QStringLiteral("%1 holds no recording (%2 and %3)").arg(place, documentName(), recordsName()));
    readDocument();
    readRecords();
}

void Recording::readDocument()
{
    if (kindOf(m_documentPath) == PathKind::Missing)
        return; // killed before its first frame
    mustBeReadableFile(m_documentPath, QStringLiteral("document"));
    QFile file(m_documentPath);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("%1 cannot be read: %2").arg(m_documentPath, file.errorString()));
    m_documentSize = file.size();

    QXmlStreamReader xml(&file);
    if (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("DataFlow"))
            throw Failure(QStringLiteral("%1 is not a recording: its root is \"%2\", not \"DataFlow\"")
                              .arg(m_documentPath, xml.name().toString()));
        while (xml.readNextStartElement())
            readFrame(xml);
    }
    while (!xml.atEnd())
        xml.readNext(); // what stands behind the root must be well-formed too
    if (xml.hasError())
        throw Failure(QStringLiteral("%1 cannot be parsed: %2 in line %3, column %4")
                          .arg(m_documentPath, xml.errorString(), QString::number(xml.lineNumber()),
                               QString::number(xml.columnNumber())));
}

void Recording::readFrame(QXmlStreamReader &xml)
{
    RecordedFrame frame;
    frame.line = xml.lineNumber();
    frame.number = number(xml.attributes(), "frameNumber");
    frame.firstRecord = m_elementCount;
    // The first two elements are the parameters and the time stamp, whatever their names; the rest are data.
    for (int i = 0; xml.readNextStartElement(); ++i) {
        if (i == 1)
            frame.time = time(xml.attributes());
        else if (i > 1)
            frame.dataTypes.append(xml.attributes().value(QLatin1String("dataType")).toString());
        xml.skipCurrentElement();
    }
    m_elementCount += static_cast<int>(frame.dataTypes.size());
    m_frames.push_back(frame);
}

void Recording::readRecords()
{
    if (kindOf(m_recordsPath) == PathKind::Missing)
        return; // no frame with an object yet
    mustBeReadableFile(m_recordsPath, QStringLiteral("records"));
    QFile file(m_recordsPath);
    if (file.size() > INT_MAX)
        throw Failure(QStringLiteral("%1 has %2 bytes, and records are read up to 2 GiB; record a long run "
                                     "in parts, with --max-frames and a folder for each")
                          .arg(m_recordsPath, QString::number(file.size())));
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("%1 cannot be read: %2").arg(m_recordsPath, file.errorString()));
    m_bytes = file.readAll();
    if (m_bytes.size() != file.size())
        throw Failure(QStringLiteral("%1 cannot be read: %2").arg(m_recordsPath, file.errorString()));

    kelDataFlowRecord record;
    qint64 offset = 0;
    while (const qint64 size = record.decode(m_bytes.constData() + offset, m_bytes.size() - offset)) {
        m_records.push_back({offset, size, record.dataType});
        offset += size;
    }
}

qint64 Recording::elementBytes() const
{
    const size_t count = std::min(m_records.size(), static_cast<size_t>(m_elementCount));
    return count == 0 ? 0 : m_records[count - 1].offset + m_records[count - 1].size;
}

qint64 Recording::unfinishedBytes() const
{
    return m_records.empty() ? m_bytes.size()
                             : m_bytes.size() - (m_records.back().offset + m_records.back().size);
}

void Recording::check() const
{
    for (const RecordedFrame &frame : m_frames) {
        for (int i = 0; i < frame.dataTypes.size(); ++i) {
            const int index = frame.firstRecord + i;
            const QString element = QStringLiteral("data element %1 of frame %2 (line %3 of %4) is a \"%5\"")
                                        .arg(QString::number(i), QString::number(frame.number),
                                             QString::number(frame.line), m_documentPath, frame.dataTypes[i]);
            if (index >= static_cast<int>(m_records.size()))
                throw Failure(
                    QStringLiteral("%1, but %2 holds no record %3: it has %4 whole records and %5 bytes of "
                                   "another")
                        .arg(element, m_recordsPath, QString::number(index),
                             QString::number(m_records.size()), QString::number(unfinishedBytes())));
            const RecordPlace &place = m_records[static_cast<size_t>(index)];
            if (place.dataType != frame.dataTypes[i])
                throw Failure(QStringLiteral("%1, but record %2 (byte %3 of %4) is a \"%5\"")
                                  .arg(element, QString::number(index), QString::number(place.offset),
                                       m_recordsPath, place.dataType));
        }
    }
}

std::vector<int> Recording::framesNumbered(quint32 number) const
{
    std::vector<int> indices;
    for (size_t i = 0; i < m_frames.size(); ++i)
        if (m_frames[i].number == number)
            indices.push_back(static_cast<int>(i));
    return indices;
}

kelDataFlowRecord Recording::record(int index) const
{
    const RecordPlace &place = m_records[static_cast<size_t>(index)];
    kelDataFlowRecord record;
    record.decode(m_bytes.constData() + place.offset, place.size);
    return record;
}

std::vector<kelDataFlowRecord> Recording::recordsOf(const RecordedFrame &frame) const
{
    std::vector<kelDataFlowRecord> records;
    const int end = std::min(frame.firstRecord + static_cast<int>(frame.dataTypes.size()),
                             static_cast<int>(m_records.size()));
    for (int i = frame.firstRecord; i < end; ++i)
        records.push_back(record(i));
    return records;
}

std::vector<cv::Rect> Recording::boxesOf(const RecordedFrame &frame) const
{
    std::vector<cv::Rect> boxes;
    for (const kelDataFlowRecord &record : recordsOf(frame)) {
        const QRect box = boxOf(record);
        if (record.dataType == QLatin1String("kelDataBlob") && !box.isNull())
            boxes.emplace_back(box.x(), box.y(), box.width(), box.height());
    }
    return boxes;
}

QRect boxOf(const kelDataFlowRecord &record)
{
    kelDataBlob blob; // knows under which key a box is recorded
    QVariantMap properties = record.properties;
    blob.setMap(properties);
    const QRect box = blob.getBoundingBox2D_qt();
    const int limit = 1 << 20; // pixels; a damaged record may hold any numbers, and sizes must be computable
    for (const int edge : {box.left(), box.top(), box.right(), box.bottom()})
        if (edge < -limit || edge > limit)
            return QRect();
    return box;
}
