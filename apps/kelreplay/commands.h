#ifndef APPS_KELREPLAY_COMMANDS_H
#define APPS_KELREPLAY_COMMANDS_H

/// \file
/// What kelreplay does with a recording, one function a command. Each prints its answer on standard output and
/// throws a Failure when the recording or the command's arguments do not allow it.

#include <QString>

class Program;
class Recording;
struct ViewSettings;

/// Frames, time span, objects by type, sizes.
void info(const Recording &recording);
/// The objects of the frames of that number.
void frame(const Recording &recording, const QString &number, bool json);
/// Whether the document and the records agree.
void verify(const Recording &recording);
/// Steps through the run in a window until that is closed. \param video its path; empty for none.
void show(const Program &program, const Recording &recording, const QString &video,
          const ViewSettings &settings);
/// Draws the frame of that number to the PNG file `target`.
void render(const Recording &recording, const QString &number, const QString &target, const QString &video,
            const ViewSettings &settings);
/// Every record, one line of JSON each.
void cat(const Program &program, const Recording &recording);

#endif
