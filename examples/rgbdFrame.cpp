// Shows a frame of a colour and depth sensor with what is known of the scene over it, and its events on a
// timeline: in a window, or as pictures.

#include "FivePeople.h"

#include <kelCore/data/kelDataImage.h>
#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewRGBD.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QHBoxLayout>
#include <QTimer>
#include <QWidget>

#include <iostream>
#include <stdexcept>

namespace {

/// True when a window can be opened. Without a display the toolkit draws off screen.
bool findDisplay()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return qgetenv("QT_QPA_PLATFORM") != "offscreen";
}

/// Types keys, such as "GPZ", into the view.
void type(const QString &keys, kelViewRGBD &view)
{
    for (const QChar key : keys.toUpper())
        view.switches().press(key.unicode());
}

/// Writes a PNG. \param small leaves 256 colours, which makes a quarter of the file.
void save(const QImage &picture, const QString &file, bool small)
{
    if (!(small ? picture.convertToFormat(QImage::Format_Indexed8) : picture).save(file, "PNG", 0))
        throw std::runtime_error(file.toStdString() + " cannot be written");
}

int showWindow(kelViewRGBD &view, kelViewEventTimeline &timeline)
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    layout->addWidget(view.widget());
    layout->addWidget(timeline.widget());
    view.widget()->setFixedSize(view.widget()->sizeHint());
    view.widget()->setFocus(); // for the keys
    window.show();

    QTimer frames;
    frames.callOnTimeout([&view] { view.updateDisplay(); }); // a key takes effect with the next frame
    frames.start(100);
    return QApplication::exec();
}

int run(const QCommandLineParser &parser, bool hasDisplay)
{
    const QString out = parser.value("out"), timelineOut = parser.value("timeline");
    const bool toFiles = !out.isEmpty() || !timelineOut.isEmpty();
    if (!toFiles && !hasDisplay)
        throw std::runtime_error("there is no display; write pictures with --out and --timeline");

    const FivePeople room(parser.positionalArguments().at(0), parser.positionalArguments().at(1));
    kelViewRGBD view;
    room.show(view);
    type(parser.value("keys"), view);
    view.updateDisplay();

    kelViewEventTimeline timeline;
    timeline.init();
    FivePeople::tell(timeline);
    timeline.updateDisplay();

    if (!toFiles)
        return showWindow(view, timeline);
    if (!out.isEmpty()) {
        const cv::Mat &frame = view.getDisplay()->getImage(); // blue, green, red, 255
        save(QImage(frame.data, frame.cols, frame.rows, static_cast<int>(frame.step), QImage::Format_RGB32),
             out, parser.isSet("small"));
    }
    if (!timelineOut.isEmpty())
        save(timeline.widget()->grab().toImage(), timelineOut, parser.isSet("small"));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const bool hasDisplay = findDisplay();
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Shows a frame of a room with five people, and its events.");
    parser.addPositionalArgument("COLOUR.png", "Colour picture, 640 x 480.");
    parser.addPositionalArgument("DEPTH.png", "Depth picture, 16-bit millimetres.");
    parser.addOptions({{"keys", "Type these keys into the view first, such as GPZ.", "KEYS"},
                       {"out", "Write the frame to this file, and show no window.", "FILE.png"},
                       {"timeline", "Write the timeline to this file, and show no window.", "FILE.png"},
                       {"small", "Leave 256 colours in the files: they get small."},
                       {{"h", "help"}, "Show this help."}});

    const bool understood = parser.parse(application.arguments());
    if (understood && parser.isSet("help"))
        parser.showHelp();
    if (!understood || parser.positionalArguments().size() != 2) {
        std::cerr << "rgbdFrame: "
                  << (understood ? "give a colour and a depth picture" : parser.errorText().toStdString())
                  << " (--help shows how)" << std::endl;
        return 2;
    }
    try {
        return run(parser, hasDisplay);
    } catch (const std::exception &error) {
        std::cerr << "rgbdFrame: " << error.what() << std::endl;
        return 1;
    }
}
