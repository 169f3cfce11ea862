#ifndef NUBLOG_NUBLOG_H
#define NUBLOG_NUBLOG_H

/// \file
/// The one call that logs a message.

#include <nubLog/nubLogEngine.h>
#include <nubLog/nubLogger.h>

namespace nub {

/// The levels in use. A message shows when the logger's level is at most its own.
enum LogLevel : int
{
    Trace = 0, ///< entry into an operation
    DefaultNotice = 1, ///< a default body ran where a subclass was expected to supply one
    Warning = 17, ///< something was ignored or only partly done
    Rejected = 256 ///< input was refused
};

/// Logs `items` as plain text, separated by single blanks, when the logger's level is at most `level`.
/// Nothing is built otherwise.
template <class... Items> void log(int level, const Items &...items)
{
    if (nubLogger::instance().level() > level)
        return;
    const nubLogEngine engine(level, false);
    QDebug line = engine.stream();
    line.noquote();
    (line << ... << items);
}

} // namespace nub

#endif
