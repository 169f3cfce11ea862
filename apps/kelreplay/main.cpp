/// \file
/// kelreplay: reads a recorded run.

#include "common/PictureSink.h"
#include "common/Program.h"
#include "common/Recording.h"
#include "common/ViewSettings.h"
#include "kelreplay/ReplayView.h"
#include "kelreplay/ReplayWindow.h"
#include "kelreplay/text.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QJsonArray>

#include <iostream>
#include <map>

namespace {

const char *const usage = "kelreplay COMMAND RECORDING [arguments] [options]";

const char *const notes = R"(Commands:
  info RECORDING               frames, time span, objects by type, sizes
  frame RECORDING N [--json]   the objects of frame N
  verify RECORDING             do the document and the binary records agree?
  show RECORDING [--video V]   step through the run in a window
  render RECORDING N OUT.png [--video V]
                               draw frame N
  cat RECORDING                every binary record, one line of JSON each
RECORDING is the folder of a recording, or the path of its document.

Keys of show: blank plays and pauses, left and right step, page up and down step by
25 frames, home and end go to the first and the last frame, Q closes, and Escape
too, except in --view rgbd.

Examples:
  kelreplay info run1
  kelreplay frame run1 120 --json
  kelreplay render run1 120 frame.png --video street.avi
  kelreplay render run1 120 frame.png --video street.avi \
            --calibration camera.yml --context zones.yml
  kelreplay show run1 --video street.avi --view rgbd
  kelreplay cat run1 | head

A run that was killed may hold records of a frame that its document does not hold yet,
and one unfinished record, at the end of the binary file: verify says how much that is,
and kelrecord --append goes on behind the last complete frame.

Exit codes:
  0  done; for verify, the recording is complete
  1  the work could not be done, or verify found a fault; one line on standard
     error says why
  2  the command line was not understood
)";

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

std::vector<int> framesNumbered(const Recording &recording, const QString &text)
{
    bool ok = false;
    const quint32 number = text.toUInt(&ok);
    if (!ok)
        throw misuse(QStringLiteral("a frame is given by its number, not \"%1\"").arg(text));
    std::vector<int> indices = recording.framesNumbered(number);
    if (indices.empty())
        throw Failure(QStringLiteral("%1 holds no frame %2").arg(recording.documentPath(), text));
    return indices;
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

void show(const Recording &recording, const QString &video, const ViewSettings &settings)
{
    if (!hasDisplay())
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
    recording.check();
    ReplayView view(recording, video, settings);
    view.show(framesNumbered(recording, number).front());
    writePng(target, view.picture());
    print(QStringLiteral("drew frame %1 to %2").arg(number, target));
}

void cat(const Recording &recording)
{
    for (int i = 0; i < static_cast<int>(recording.records().size()) && std::cout; ++i) {
        const RecordPlace &place = recording.records()[static_cast<size_t>(i)];
        QJsonObject line = toJson(recording.record(i));
        line.insert(QStringLiteral("record"), i);
        line.insert(QStringLiteral("offset"), double(place.offset));
        std::cout << compact(line) << '\n';
    }
    if (recording.unfinishedBytes() > 0)
        say(QStringLiteral("%1 ends with an unfinished record of %2")
                .arg(recording.recordsPath(), count(recording.unfinishedBytes(), "byte")));
}

void replay(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Reads a run that kelrecord, or the library's writer, recorded."));
    parser.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("What to do, see below."));
    parser.addPositionalArgument(QStringLiteral("RECORDING"),
                                 QStringLiteral("The recording's folder or document."));
    parser.addOption({QStringLiteral("json"), QStringLiteral("Print a frame as JSON.")});
    parser.addOption({QStringLiteral("video"), QStringLiteral("The video that was recorded, to draw over."),
                      QStringLiteral("V")});
    parser.addOption({QStringLiteral("calibration"),
                      QStringLiteral("Calibration of the camera: render then draws a grid on the ground, and "
                                     "--view rgbd knows where actors stand."),
                      QStringLiteral("FILE")});
    parser.addOption(
        {QStringLiteral("context"),
         QStringLiteral("Zones, walls and objects of the scene, to draw with render or in --view rgbd; needs "
                        "--calibration."),
         QStringLiteral("FILE")});
    addViewOptions(parser);
    if (!parse(parser, arguments, QString::fromLatin1(usage), viewNotes() + QString::fromLatin1(notes)))
        return;

    struct Command
    {
        QString arguments; ///< behind the recording
        std::function<void(const Recording &, const QStringList &)> run;
    };
    const QString video = parser.value(QStringLiteral("video"));
    const ViewSettings view = readViewSettings(parser);
    const bool json = parser.isSet(QStringLiteral("json"));
    const std::map<QString, Command> commands{
        {QStringLiteral("info"), {{}, [](auto &recording, auto &) { info(recording); }}},
        {QStringLiteral("frame"),
         {{"N"}, [&](auto &recording, auto &rest) { frame(recording, rest[0], json); }}},
        {QStringLiteral("verify"), {{}, [](auto &recording, auto &) { verify(recording); }}},
        {QStringLiteral("show"), {{}, [&](auto &recording, auto &) { show(recording, video, view); }}},
        {QStringLiteral("render"),
         {{"N OUT.png"},
          [&](auto &recording, auto &rest) { render(recording, rest[0], rest[1], video, view); }}},
        {QStringLiteral("cat"), {{}, [](auto &recording, auto &) { cat(recording); }}},
    };

    const QStringList words = parser.positionalArguments();
    if (words.isEmpty())
        throw misuse(QStringLiteral("no command was given"));
    const auto command = commands.find(words[0]);
    if (command == commands.end())
        throw misuse(QStringLiteral("there is no command \"%1\"").arg(words[0]));
    const QString call =
        QStringLiteral("kelreplay %1 RECORDING %2").arg(words[0], command->second.arguments).trimmed();
    if (words.size() != call.split(QLatin1Char(' ')).size() - 1)
        throw misuse(QStringLiteral("the call is: %1").arg(call));
    command->second.run(Recording(words[1]), words.mid(2));
}

} // namespace

int main(int argc, char **argv)
{
    const bool wantsWindow = argc > 1 && !qstrcmp(argv[1], "show");
    return runProgram("kelreplay", argc, argv, wantsWindow, replay);
}
