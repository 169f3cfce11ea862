#ifndef TESTS_RECORDING_RUNSCRIPTS_H
#define TESTS_RECORDING_RUNSCRIPTS_H

/// \file
/// Runs of made-up frames, and the two ways to record them.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>
#include <kelCore/recording/kelRecordingWriter.h>

#include "support/Capture.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QPointF>
#include <QRect>

#include <memory>
#include <random>

using Objects = QList<QSharedPointer<kelAbstractData>>;

struct MadeFrame
{
    CSynchronizer stamp;
    Objects objects;
};

/// A frame with five blobs, as a camera gives it.
inline MadeFrame plainFrame(int number, int blobs = 5)
{
    MadeFrame frame;
    frame.stamp.setFrameNumber(static_cast<unsigned>(number));
    frame.stamp.setDateTime(QDateTime(QDate(2024, 2, 28), QTime(23, 59, 0), Qt::UTC).addMSecs(number * 40));
    for (int i = 0; i < blobs; ++i) {
        QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D_qt(QRect(10 * i + number, 20, 30 + i, 40 + number % 7));
        frame.objects.append(blob);
    }
    return frame;
}

/// Frames with texts, values and times of every kind.
class FrameMaker
{
public:
    explicit FrameMaker(unsigned seed) : m_random(seed) { }

    int below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }

    MadeFrame frame()
    {
        MadeFrame frame;
        frame.stamp.setFrameNumber(below(4) ? static_cast<unsigned>(below(1000)) : m_random());
        if (below(8))
            frame.stamp.setDateTime(
                QDateTime::fromMSecsSinceEpoch(qint64(m_random()) * 400 - qint64(m_random()) * 100, Qt::UTC));
        for (int i = below(4); i > 0; --i)
            frame.objects.append(object());
        return frame;
    }

    QString text()
    {
        static const char16_t odd[] = {u'<', u'>', u'&',   u'"',   u'\'',  u'\n',  u'\r',  u'\t',  u' ',
                                       u']', 0x12, 0xe9,   0x20ac, 0xd83d, 0xde00, 0xfffe, 0xffff, 0xdc00,
                                       0x7f, 0x85, 0x2028, 0xfffd, u';',   u'#',   u'/',   u'=',   u']'};
        QString text;
        for (int i = below(9); i > 0; --i) {
            const char16_t c = below(2) ? odd[below(static_cast<int>(std::size(odd)))]
                                        : static_cast<char16_t>('a' + below(26));
            text += QChar(static_cast<ushort>(c));
        }
        return below(6) ? text : text + QStringLiteral("]]>");
    }

private:
    QSharedPointer<kelAbstractData> object()
    {
        QSharedPointer<kelAbstractData> object;
        switch (below(5)) {
        case 0:
            return object;
        case 1:
            object.reset(new kelDataImage);
            break;
        case 2:
            object.reset(new kelDataEvent);
            break;
        default:
            object.reset(new kelDataBlob);
        }
        QVariantMap map;
        for (int i = below(4); i > 0; --i)
            map.insert(text(), value());
        object->setMap(map);
        return object;
    }

    QVariant value()
    {
        switch (below(8)) {
        case 0:
            return below(1000);
        case 1:
            return text();
        case 2:
            return below(1000) / 7.0;
        case 3:
            return QPointF(below(9), below(9) / 3.0);
        case 4:
            return QVariantList{below(9), text()};
        case 5:
            return QVariant();
        case 6:
            return QRect(QPoint(INT_MIN, below(9)), QPoint(INT_MAX, below(9)));
        default:
            return QRect(below(900) - 100, below(900) - 100, below(90), below(90));
        }
    }

    std::mt19937 m_random;
};

/// The stage that records into the working directory.
inline std::unique_ptr<kelAbstractProcessDataFlowWriter> makeStatedWriter()
{
    const OutputCapture silence;
    auto writer = std::make_unique<kelAbstractProcessDataFlowWriter>();
    writer->setFilePath(QFile(QStringLiteral("dataflow.xml")));
    return writer;
}

inline bool writeStated(kelAbstractProcessDataFlowWriter &writer, const MadeFrame &frame)
{
    writer.setSynchronizer(frame.stamp);
    writer.setDataFlow(frame.objects);
    return writer.writeDataFlow();
}

inline testing::AssertionResult done(const kelResult &result)
{
    return result ? testing::AssertionSuccess() : testing::AssertionFailure() << result.line().toStdString();
}

#endif
