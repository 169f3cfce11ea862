#ifndef APPS_COMMON_COMMANDLINE_H
#define APPS_COMMON_COMMANDLINE_H

/// \file
/// How the programs read their command lines.

#include "common/Failure.h"

#include <QString>
#include <QStringList>

class QCommandLineParser;

/// Parses `arguments` (without the program's name). `usage` is the line behind "Usage: "; `notes` (examples,
/// exit codes) stands behind the options in the help text.
/// \return false when the help or the version was asked for and has been printed.
/// \throws Failure when they are not understood, or one of them is empty.
bool parse(QCommandLineParser &parser, const QStringList &arguments, const QString &usage,
           const QString &notes);

/// The value of an option as a number in [`least`, the largest]; `otherwise` where the option is not given.
int integerOption(const QCommandLineParser &parser, const QString &option, int least, int otherwise);
/// The value of an option as a real number in [`least`, `greatest`]; `otherwise` where the option is not
/// given.
double realOption(const QCommandLineParser &parser, const QString &option, double least, double greatest,
                  double otherwise);

/// The word out of `known` that somebody who wrote `word` most likely meant: one that it begins or that is a
/// few slips away from it. Empty where there is none.
QString nearest(const QString &word, const QStringList &known);
/// "; did you mean WORD?" with `prefix` in front of the nearest word; empty where there is none.
QString suggestion(const QString &word, const QStringList &known, const QString &prefix = QString());

#endif
