#ifndef APPS_KELREPLAY_REPLAY_H
#define APPS_KELREPLAY_REPLAY_H

/// \file
/// The work of kelreplay.

#include <QStringList>

class Program;

/// Does what the command line asks for. \throws Failure when it is not understood, or cannot be done.
void replay(const Program &program, const QStringList &arguments);

#endif
