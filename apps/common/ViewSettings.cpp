#include "common/ViewSettings.h"

#include "common/Failure.h"

#include <kelCore/view/MyQGraphicsScene.h>

#include <QCommandLineParser>

#include <algorithm>

namespace {

/// The keys that can be given as characters.
QString keyCharacters()
{
    QString characters;
    for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys())
        if (const QLatin1String name(key.name); name.size() == 1)
            characters += name;
    return characters;
}

} // namespace

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
    const QString known = keyCharacters();
    const auto unknown = std::find_if(settings.keys.cbegin(), settings.keys.cend(),
                                      [&known](QChar key) { return !known.contains(key); });
    if (unknown != settings.keys.cend())
        throw misuse(QStringLiteral("--keys takes keys out of %1, not \"%2\"").arg(known, QString(*unknown)));
    return settings;
}

QString viewNotes()
{
    const MyQGraphicsScene atFirst;
    QString notes = QStringLiteral("Keys of --view rgbd, which --keys presses before the first frame:\n");
    for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys())
        notes += QStringLiteral("  %1 %2%3\n")
                     .arg(QLatin1String(key.name), -6)
                     .arg(QLatin1String(key.help),
                          QLatin1String(key.state && atFirst.*key.state ? " (on at first)" : ""));
    return notes
        + QStringLiteral(
               R"(A shows the foreground, in kelrecord; G the ground of --calibration near the
camera; Z the elements of --context. D, F, L and P show what no video tells. The
frame rate is seen in windows, where Escape works too. Heights and speeds need a
--calibration in millimetres.

)");
}
