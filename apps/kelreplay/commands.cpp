#include "kelreplay/commands.h"

#include "common/PictureSink.h"
#include "common/Program.h"
#include "common/Recording.h"
#include "common/RegularFile.h"
#include "kelreplay/ReplayView.h"
#include "kelreplay/ReplayWindow.h"
#include "kelreplay/text.h"

#include <QApplication>
#include <QJsonArray>

#include <iostream>
#include <map>

namespace {

QString count(qint64 number, const char *noun)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(number), QLatin1String(noun),
                                         QLatin1String(number == 1 ? "" : "s"));
}

void print(const QString &line) { std::cout << line.toStdString() << '\n'; }

/// What a run that was killed left behind its last frame; empty where there is nothing.
QString leftBehind(const Recording &recording)
{
    QStringList parts;
    if (recording.recordsAhead() > 0)
        parts.append(count(recording.recordsAhead(), "record")
                     + QStringLiteral(" of a frame that the document does not hold"));
    if (recording.unfinishedBytes() > 0)
        parts.append(QStringLiteral("an unfinished record of ") + count(recording.unfinishedBytes(), "byte"));
    return parts.join(QStringLiteral(" and "));
}

std::vector<int> framesNumbered(const Recording &recording, const QString &text)
{
    bool ok = false;
    const quint32 number = text.toUInt(&ok);
    if (!ok)
        throw misuse(QStringLiteral("a frame is given by its number, not \"%1\"").arg(text));
    std::vector<int> indices = recording.framesNumbered(number);
    if (indices.empty())
        throw Failure(QStringLiteral("%1 holds no frame %2; kelreplay info shows which it holds")
                          .arg(recording.documentPath(), text));
    return indices;
}

} // namespace

void info(const Recording &recording)
{
    print(QStringLiteral("frames:    %1").arg(recording.frames().size()));
    if (!recording.frames().empty()) {
        const RecordedFrame &first = recording.frames().front();
        const RecordedFrame &last = recording.frames().back();
        print(QStringLiteral("numbers:   %1 to %2").arg(first.number).arg(last.number));
        QString span = QStringLiteral("time span: %1 to %2").arg(timeText(first), timeText(last));
        if (!first.time.isNull() && !last.time.isNull())
            span += QStringLiteral(" (%1 s)").arg(double(first.time.msecsTo(last.time)) / 1000, 0, 'f', 3);
        print(span);
    }
    std::map<QString, int> byType;
    for (const RecordPlace &place : recording.records())
        ++byType[place.dataType];
    print(QStringLiteral("objects:   %1").arg(recording.records().size()));
    for (const auto &[type, number] : byType)
        print(QStringLiteral("  %1: %2").arg(type).arg(number));
    print(QStringLiteral("document:  %1 (%2)")
              .arg(recording.documentPath(), count(recording.documentSize(), "byte")));
    print(QStringLiteral("records:   %1 (%2)")
              .arg(recording.recordsPath(), count(recording.recordsSize(), "byte")));
    if (const QString rest = leftBehind(recording); !rest.isEmpty())
        print(QStringLiteral("at the end: ") + rest);
}

void frame(const Recording &recording, const QString &number, bool json)
{
    recording.check();
    for (const int index : framesNumbered(recording, number)) {
        const RecordedFrame &frame = recording.frames()[static_cast<size_t>(index)];
        const std::vector<kelDataFlowRecord> records = recording.recordsOf(frame);
        if (json) {
            QJsonArray objects;
            for (const kelDataFlowRecord &record : records)
                objects.append(toJson(record));
            const QJsonValue time = frame.time.isNull() ? QJsonValue() : QJsonValue(timeText(frame));
            std::cout << compact({{"frame", double(frame.number)}, {"time", time}, {"objects", objects}})
                      << '\n';
            continue;
        }
        print(QStringLiteral("frame %1, %2, %3")
                  .arg(QString::number(frame.number), timeText(frame),
                       count(qint64(records.size()), "object")));
        for (const kelDataFlowRecord &record : records)
            print(QStringLiteral("  ") + toText(record));
    }
}

void verify(const Recording &recording)
{
    recording.check();
    QString line = QStringLiteral("complete: %1, %2; the document and the records agree")
                       .arg(count(qint64(recording.frames().size()), "frame"),
                            count(recording.elementCount(), "object"));
    if (const QString rest = leftBehind(recording); !rest.isEmpty())
        line += QStringLiteral("; at the end: %1 (kelrecord --append trims that)").arg(rest);
    print(line);
}

void show(const Program &program, const Recording &recording, const QString &video,
          const ViewSettings &settings)
{
    if (!program.hasDisplay())
        throw Failure(
            QStringLiteral("there is no display to show the recording on; render draws a frame without one"));
    if (recording.frames().empty())
        throw Failure(QStringLiteral("%1 holds no frame to show").arg(recording.documentPath()));
    recording.check();
    ReplayWindow window(recording, video, settings);
    window.show();
    QApplication::exec();
}

void render(const Recording &recording, const QString &number, const QString &target, const QString &video,
            const ViewSettings &settings)
{
    mustBeWritableTarget(target);
    recording.check();
    ReplayView view(recording, video, settings);
    view.show(framesNumbered(recording, number).front());
    writePng(target, view.picture());
    print(QStringLiteral("drew frame %1 to %2").arg(number, target));
}

void cat(const Program &program, const Recording &recording)
{
    for (int i = 0; i < static_cast<int>(recording.records().size()) && std::cout; ++i) {
        const RecordPlace &place = recording.records()[static_cast<size_t>(i)];
        QJsonObject line = toJson(recording.record(i));
        line.insert(QStringLiteral("record"), i);
        line.insert(QStringLiteral("offset"), double(place.offset));
        std::cout << compact(line) << '\n';
    }
    if (recording.unfinishedBytes() > 0)
        program.say(QStringLiteral("%1 ends with an unfinished record of %2")
                        .arg(recording.recordsPath(), count(recording.unfinishedBytes(), "byte")));
}
