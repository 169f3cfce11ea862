#ifndef APPS_COMMON_PROGRAM_H
#define APPS_COMMON_PROGRAM_H

/// \file
/// What every program does the same way: it starts with or without a display, reads its command line, and
/// ends bad input with one line and an exit code.

#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>

class QCommandLineParser;

/// Exit codes of the programs.
enum ExitCode
{
    Done = 0, ///< also when ended by Ctrl-C
    Failed = 1, ///< the work could not be done
    Misused = 2 ///< the command line was not understood
};

/// Ends the program with one line on standard error: what is wrong, where, and what to do.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const QString &line, ExitCode code = Failed)
        : std::runtime_error(line.toStdString()), m_code(code)
    { }
    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};

/// A failure of the command line.
inline Failure misuse(const QString &line)
{
    return Failure(line + QStringLiteral(" (--help shows how it is used)"), Misused);
}

/// One line on standard error, with the program's name in front.
void say(const QString &line);

/// Runs `work` with the arguments after the program's name, and turns what it throws into one line and an
/// exit code. Where no window is wanted, or there is no display, the toolkit draws off screen.
int runProgram(const char *name, int argc, char **argv, bool wantsWindow,
               const std::function<void(const QStringList &arguments)> &work);

/// True when the program started on a display.
bool hasDisplay();

/// Parses `arguments` (without the program's name). `usage` is the line behind "Usage: "; `notes` (examples,
/// exit codes) stands behind the options in the help text. \return false when the help or the version was
/// asked for and has been printed.
bool parse(QCommandLineParser &parser, const QStringList &arguments, const QString &usage,
           const QString &notes);

/// The value of an option as a number in [`least`, the largest]; `otherwise` where the option is not given.
int integerOption(const QCommandLineParser &parser, const QString &option, int least, int otherwise);
/// The value of an option as a positive real number; `otherwise` where the option is not given.
double realOption(const QCommandLineParser &parser, const QString &option, double otherwise);

#endif
