#ifndef APPS_COMMON_VIEWSETTINGS_H
#define APPS_COMMON_VIEWSETTINGS_H

/// \file
/// What the command line says of views, and what the help says of them.

#include "common/Scene.h"

#include <QString>

class QCommandLineParser;

struct ViewSettings
{
    enum class Kind
    {
        Plain, ///< the base view: blobs over the picture
        Operator ///< the RGB-D view with the event timeline under it
    };
    Kind kind = Kind::Plain;
    QString keys; ///< pressed in the operator's view before its first frame
    Scene scene; ///< of --calibration and --context; readViewSettings leaves it empty
    bool mask = false; ///< paint the foreground black; in the base view alone
};

/// The options --view and --keys.
void addViewOptions(QCommandLineParser &parser);
/// What they say. \throws Failure when they are not understood.
ViewSettings readViewSettings(const QCommandLineParser &parser);
/// A paragraph of the help text: what the keys do.
QString viewNotes();

#endif
