#ifndef APPS_KELRECORD_SETTINGS_H
#define APPS_KELRECORD_SETTINGS_H

/// \file
/// What the command line of kelrecord asks for.

#include "common/ViewSettings.h"
#include "kelrecord/RunWriter.h"

#include <QDateTime>
#include <QStringList>

#include <climits>
#include <optional>

/// What the command line of kelrecord asks for. Paths outlive a change of the working directory.
struct Settings
{
    QString video;
    QString folder;
    RunWriter::Mode mode = RunWriter::Mode::Fresh;
    QDateTime start; ///< of the frame numbered 0; null: what the file says
    double framesPerSecond = 0; ///< 0: what the file says
    int maxFrames = INT_MAX;
    ViewSettings view;
    bool show = false;
    QString render;
    int renderEvery = 1;
    std::optional<int> minArea;
    std::optional<int> minDimension;
    bool quiet = false;
};

/// Reads the command line; nothing when it asked for the help or the version, which has been printed then.
/// \throws Failure when it is not understood.
std::optional<Settings> readSettings(const QStringList &arguments);

#endif
