#ifndef APPS_COMMON_RECORDING_H
#define APPS_COMMON_RECORDING_H

/// \file
/// A recorded run on disk, read in time linear in its length.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <opencv2/core/types.hpp>

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include <vector>

class QXmlStreamReader;

/// One frame of the document.
struct RecordedFrame
{
    quint32 number = 0;
    QDateTime time; ///< UTC; null when none was recorded, or none that there is
    qint64 line = 0; ///< where the frame begins in the document
    int firstRecord = 0; ///< index of its first record in the binary file
    QStringList dataTypes; ///< of its data elements, in order: one record each

    CSynchronizer stamp() const;
};

/// Where one record lies in the binary file.
struct RecordPlace
{
    qint64 offset = 0;
    qint64 size = 0;
    QString dataType;
};

/// The box that a record holds; null where it holds none, or none that a picture could show.
QRect boxOf(const kelDataFlowRecord &record);

/// The document and the binary file of a run. Both are written in the same order, so a frame's records are
/// found by counting its data elements.
class Recording
{
public:
    /// Names of the two files in a recording's folder.
    static QString documentName() { return QStringLiteral("dataflow.xml"); }
    static QString recordsName() { return QStringLiteral("dataflow.dat"); }
    /// True when `folder` holds a recording, or a part of one.
    static bool existsIn(const QString &folder);

    /// Reads the recording in `place`: its folder, or the path of its document.
    /// \throws Failure when there is none, or a file cannot be read or is no recording.
    explicit Recording(const QString &place);

    const std::vector<RecordedFrame> &frames() const { return m_frames; }
    const std::vector<RecordPlace> &records() const { return m_records; }
    QString documentPath() const { return m_documentPath; }
    QString recordsPath() const { return m_recordsPath; }
    qint64 documentSize() const { return m_documentSize; }
    qint64 recordsSize() const { return m_bytes.size(); }

    /// How many records the document's frames have, and how many bytes they take.
    int elementCount() const { return m_elementCount; }
    qint64 elementBytes() const;
    /// Whole records behind those of the document's last frame, and the bytes of an unfinished one behind
    /// them: what a run that was killed leaves behind.
    int recordsAhead() const { return static_cast<int>(m_records.size()) - m_elementCount; }
    qint64 unfinishedBytes() const;

    /// \throws Failure saying where the document and the records do not agree in number, order or type.
    void check() const;

    /// Indices of the frames of that number, in document order.
    std::vector<int> framesNumbered(quint32 number) const;
    kelDataFlowRecord record(int index) const;
    /// The records of a frame.
    std::vector<kelDataFlowRecord> recordsOf(const RecordedFrame &frame) const;
    /// The boxes of a frame's blobs.
    std::vector<cv::Rect> boxesOf(const RecordedFrame &frame) const;

private:
    void readDocument();
    void readFrame(QXmlStreamReader &xml);
    void readRecords();

    QString m_documentPath;
    QString m_recordsPath;
    std::vector<RecordedFrame> m_frames;
    std::vector<RecordPlace> m_records;
    int m_elementCount = 0;
    qint64 m_documentSize = 0;
    QByteArray m_bytes; ///< of the binary file
};

#endif
