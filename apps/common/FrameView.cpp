#include "common/FrameView.h"

#include "common/Failure.h"
#include "common/OperatorView.h"
#include "common/PlainView.h"

#include <QCommandLineParser>

#include <algorithm>

void addViewOptions(QCommandLineParser &parser)
{
    parser.addOption({QStringLiteral("view"),
                      QStringLiteral("What frames are shown and drawn in: plain, blobs over the picture, or "
                                     "rgbd, actors with their trajectories and events, and a timeline under "
                                     "them. Default: plain."),
                      QStringLiteral("NAME")});
    parser.addOption({QStringLiteral("keys"),
                      QStringLiteral("Keys to press in --view rgbd, such as IZ: see below."),
                      QStringLiteral("KEYS")});
}

ViewSettings readViewSettings(const QCommandLineParser &parser)
{
    ViewSettings settings;
    const QString view = parser.value(QStringLiteral("view"));
    if (view == QLatin1String("rgbd"))
        settings.kind = ViewSettings::Kind::Operator;
    else if (parser.isSet(QStringLiteral("view")) && view != QLatin1String("plain"))
        throw misuse(QStringLiteral("--view is plain or rgbd, not \"%1\"").arg(view));

    settings.keys = parser.value(QStringLiteral("keys")).toUpper();
    if (parser.isSet(QStringLiteral("keys")) && settings.kind != ViewSettings::Kind::Operator)
        throw misuse(QStringLiteral("--keys are pressed in --view rgbd"));
    const QString known = OperatorView::switchKeys();
    const auto unknown = std::find_if(settings.keys.cbegin(), settings.keys.cend(),
                                      [&known](QChar key) { return !known.contains(key); });
    if (unknown != settings.keys.cend())
        throw misuse(QStringLiteral("--keys takes keys out of %1, not \"%2\"").arg(known, QString(*unknown)));
    return settings;
}

QString viewNotes()
{
    return QStringLiteral(
        R"(Keys of --view rgbd, which --keys presses before the first frame:
  on at first   B boxes, T trajectories, E events, W frame rate (in windows)
  off at first  I id, height and speed, A pixels of the foreground (kelrecord),
                Z elements of --context, G ground of --calibration near the camera
  + and - lengthen and shorten the trajectories, by 5 frames. In a window Escape
  turns the display off and on. D, F, L and P show what no video tells.
  Heights and speeds need a --calibration in millimetres.

)");
}

std::unique_ptr<FrameView> makeView(const ViewSettings &settings)
{
    if (settings.kind == ViewSettings::Kind::Operator)
        return std::make_unique<OperatorView>(settings.scene, settings.keys);
    return std::make_unique<PlainView>(settings.scene, settings.mask);
}
