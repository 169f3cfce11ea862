#ifndef APPS_KELRECORD_RECORD_H
#define APPS_KELRECORD_RECORD_H

/// \file
/// The work of kelrecord.

class Program;
struct Settings;

/// Records a run as the settings ask for, and prints how much was recorded. Ctrl-C and SIGTERM end it after the
/// frame in hand.
/// \throws Failure
void record(const Program &program, Settings settings);

#endif
