#ifndef APPS_COMMON_FAILURE_H
#define APPS_COMMON_FAILURE_H

/// \file
/// How the parts of a program end it.

#include <QString>

#include <stdexcept>

/// Exit codes of the programs.
enum ExitCode
{
    Done = 0, ///< also when a run that had begun was ended by Ctrl-C
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

#endif
