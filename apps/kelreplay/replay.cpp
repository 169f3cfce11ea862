#include "kelreplay/replay.h"

#include "common/CommandLine.h"
#include "common/Program.h"
#include "common/Recording.h"
#include "common/ViewSettings.h"
#include "kelreplay/commands.h"

#include <QCommandLineParser>

#include <functional>
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

} // namespace

void replay(const Program &program, const QStringList &arguments)
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

    const QString video = parser.value(QStringLiteral("video"));
    const bool json = parser.isSet(QStringLiteral("json"));
    const ViewSettings settings = readViewSettings(parser);
    const auto view = [&] { // reads files that only some commands need
        ViewSettings whole = settings;
        whole.scene =
            Scene(parser.value(QStringLiteral("calibration")), parser.value(QStringLiteral("context")));
        return whole;
    };
    struct Command
    {
        QString arguments; ///< behind the recording
        std::function<void(const Recording &, const QStringList &)> run;
    };
    const std::map<QString, Command> commands{
        {QStringLiteral("info"), {{}, [](auto &recording, auto &) { info(recording); }}},
        {QStringLiteral("frame"),
         {{"N"}, [&](auto &recording, auto &rest) { frame(recording, rest[0], json); }}},
        {QStringLiteral("verify"), {{}, [](auto &recording, auto &) { verify(recording); }}},
        {QStringLiteral("show"),
         {{}, [&](auto &recording, auto &) { show(program, recording, video, view()); }}},
        {QStringLiteral("render"),
         {{"N OUT.png"},
          [&](auto &recording, auto &rest) { render(recording, rest[0], rest[1], video, view()); }}},
        {QStringLiteral("cat"), {{}, [&](auto &recording, auto &) { cat(program, recording); }}},
    };

    const QStringList words = parser.positionalArguments();
    QStringList known;
    for (const auto &command : commands)
        known.append(command.first);
    if (words.isEmpty())
        throw misuse(
            QStringLiteral("no command was given; there are %1").arg(known.join(QStringLiteral(", "))));
    const auto command = commands.find(words[0]);
    if (command == commands.end()) {
        const QString meant = suggestion(words[0], known);
        throw misuse(QStringLiteral("there is no command \"%1\"%2")
                         .arg(words[0],
                              meant.isEmpty()
                                  ? QStringLiteral("; there are ") + known.join(QStringLiteral(", "))
                                  : meant));
    }
    const QString call =
        QStringLiteral("kelreplay %1 RECORDING %2").arg(words[0], command->second.arguments).trimmed();
    if (words.size() != call.split(QLatin1Char(' ')).size() - 1)
        throw misuse(QStringLiteral("the call is: %1").arg(call));
    command->second.run(Recording(words[1]), words.mid(2));
}
