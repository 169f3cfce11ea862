#include "kelrecord/Settings.h"

#include "common/CommandLine.h"
#include "common/VideoSource.h"
#include "kelrecord/StampClock.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace {

const char *const usage = "kelrecord VIDEO --out DIR [options]";

const char *const notes = R"(Examples:
  kelrecord street.avi --out run1
      records every frame of the video into run1.
  kelrecord street.avi --out run1 --append
      goes on where an interrupted run stopped.
  kelrecord 0 --out live --show
      records camera 0 until Ctrl-C and shows what is found.
  kelrecord street.avi --out run2 --min-area 150 --min-dimension 10 \
            --render frames --render-every 25
      also finds small blobs, and draws every 25th frame.
  kelrecord street.avi --out run3 --show --view rgbd --keys I
      shows who is in view, where each has come from and since when.

The recording is two files in DIR: dataflow.xml, the document, and dataflow.dat, one
record per blob; kelreplay reads them. dataflow.idx is an index that can be deleted.
A frame costs the same however long the run is. A run that is ended or killed at any
moment leaves all frames before it: the files are handed to the system after every
frame, though not forced to the disk, so that a power cut may lose the last ones.

Ctrl-C ends a run after the frame in hand; a second one ends it at once.

Exit codes:
  0  done, also when Ctrl-C ended a run that had begun
  1  the work could not be done; one line on standard error says why
  2  the command line was not understood
)";

/// A path that outlives the change of the working directory.
QString absolute(const QString &path) { return path.isEmpty() ? path : QFileInfo(path).absoluteFilePath(); }

/// What the name says of the video once the working directory has changed.
QString absoluteVideo(const QString &name)
{
    bool isIndex = false;
    name.toInt(&isIndex);
    const bool isCamera = isIndex && !QFileInfo::exists(name);
    return isCamera || name.contains(QLatin1String("://")) ? name : absolute(name);
}

QDateTime parseStart(const QString &text)
{
    QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!time.isValid())
        throw misuse(
            QStringLiteral("--start takes a time such as 2009-06-01T12:00:00.000Z, not \"%1\"").arg(text));
    // No zone was given where it is local time.
    time = time.timeSpec() == Qt::LocalTime ? QDateTime(time.date(), time.time(), Qt::UTC) : time.toUTC();
    if (!canBeRecorded(time))
        throw misuse(QStringLiteral("--start takes a time in the years 1 to 9999, not \"%1\"").arg(text));
    return time;
}

} // namespace

std::optional<Settings> readSettings(const QStringList &arguments)
{
    QCommandLineParser parser;
    const auto option = [&parser](const char *name, const char *help, const char *value = "") {
        parser.addOption({QString::fromLatin1(name), QString::fromLatin1(help), QString::fromLatin1(value)});
    };
    parser.setApplicationDescription(
        QStringLiteral("Finds the moving blobs of a video and records them, frame by frame."));
    parser.addPositionalArgument(QStringLiteral("VIDEO"),
                                 QStringLiteral("A video file, numbered pictures such as frame_%04d.png, an "
                                                "address, or the index or the device of a camera."));
    option("out", "Folder of the recording; made where it is missing.", "DIR");
    option("append", "Go on behind the last complete frame of the recording in DIR.");
    option("overwrite", "Replace the recording in DIR.");
    option("start",
           "Time of frame 0, ISO 8601, UTC unless it names a zone. Default: when the file was last changed, "
           "or now for a camera.",
           "TIME");
    option("fps",
           "Frames per second of the time stamps. Default: what the file says; a camera's frames are stamped "
           "when they are taken.",
           "N");
    option("max-frames", "Record at most N frames in this run.", "N");
    option(
        "calibration",
        "Calibration of the camera: each blob then carries its foot point on the ground, drawn frames show "
        "a grid on the ground, and --view rgbd knows where actors stand.",
        "FILE");
    option("context",
           "Zones, walls and objects of the scene, to show on drawn frames or in --view rgbd; needs "
           "--calibration.",
           "FILE");
    option("show", "Show each frame in a window; closing it ends the recording.");
    addViewOptions(parser);
    option("render",
           "Draw frames: PNG files in a folder, which is made where it is missing, or the frames of a video "
           "when the name ends in .avi.",
           "TARGET");
    option("render-every", "Draw every Nth frame. Default: 1.", "N");
    option("mask", "Paint the foreground black where frames are shown or drawn; in --view plain.");
    option("min-area", "Smallest area of a blob in pixels. Default: 2000.", "N");
    option("min-dimension", "Smallest width and height of a blob in pixels. Default: 50.", "N");
    option("quiet", "Say nothing but errors.");
    if (!parse(parser, arguments, QString::fromLatin1(usage), viewNotes() + QString::fromLatin1(notes)))
        return std::nullopt;

    const QStringList videos = parser.positionalArguments();
    if (videos.size() != 1)
        throw misuse(videos.isEmpty()
                         ? QStringLiteral("no video was given")
                         : QStringLiteral("one video at a time, not also \"%1\"").arg(videos[1]));
    if (!parser.isSet(QStringLiteral("out")))
        throw misuse(QStringLiteral("--out DIR says where to record"));
    if (parser.isSet(QStringLiteral("append")) && parser.isSet(QStringLiteral("overwrite")))
        throw misuse(QStringLiteral("--append and --overwrite exclude each other"));

    Settings settings;
    settings.video = absoluteVideo(videos.first());
    settings.folder = parser.value(QStringLiteral("out"));
    if (parser.isSet(QStringLiteral("append")))
        settings.mode = RunWriter::Mode::Append;
    if (parser.isSet(QStringLiteral("overwrite")))
        settings.mode = RunWriter::Mode::Overwrite;
    if (parser.isSet(QStringLiteral("start")))
        settings.start = parseStart(parser.value(QStringLiteral("start")));
    settings.framesPerSecond = realOption(parser, QStringLiteral("fps"), leastRate, greatestRate, 0);
    settings.maxFrames = integerOption(parser, QStringLiteral("max-frames"), 1, INT_MAX);
    settings.view = readViewSettings(parser);
    settings.view.mask = parser.isSet(QStringLiteral("mask"));
    if (settings.view.mask && settings.view.kind == ViewSettings::Kind::Operator)
        throw misuse(QStringLiteral("--mask is for --view plain; key A shows the foreground in --view rgbd"));
    settings.show = parser.isSet(QStringLiteral("show"));
    settings.render = absolute(parser.value(QStringLiteral("render")));
    if (QFileInfo::exists(settings.render) && QFileInfo(settings.render) == QFileInfo(settings.video))
        throw misuse(QStringLiteral("--render would write over the video %1").arg(videos.first()));
    settings.renderEvery = integerOption(parser, QStringLiteral("render-every"), 1, 1);
    if (parser.isSet(QStringLiteral("min-area")))
        settings.minArea = integerOption(parser, QStringLiteral("min-area"), 0, 0);
    if (parser.isSet(QStringLiteral("min-dimension")))
        settings.minDimension = integerOption(parser, QStringLiteral("min-dimension"), 0, 0);
    settings.quiet = parser.isSet(QStringLiteral("quiet"));
    // Last: a command line that is not understood is told before files that cannot be read.
    settings.view.scene =
        Scene(parser.value(QStringLiteral("calibration")), parser.value(QStringLiteral("context")));
    return settings;
}
