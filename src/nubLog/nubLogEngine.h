#ifndef NUBLOG_NUBLOGENGINE_H
#define NUBLOG_NUBLOGENGINE_H

/// \file
/// The way a message leaves the logger.

#include <nubLog/nubLogExport.h>

#include <QDebug>

/// One message on its way to Qt's message output.
///
/// The engine does not look at the logger's level: whoever opens one has compared levels first, so that a
/// silenced message costs one comparison. `nub::log` (nubLog.h) does both.
///
/// Every message, whatever its level, goes out as a debug message: a rule that silences Qt's debug messages
/// silences the logger too.
class NUBLOG_EXPORT nubLogEngine
{
public:
    /// \param level  the message's level.
    /// \param custom true when the level is one of the application's own; the library always passes false.
    explicit nubLogEngine(int level, bool custom = false);

    int level() const { return m_level; }
    bool isCustom() const { return m_custom; }

    /// A debug stream for the message's items; the line is handed over when the stream is destroyed.
    QDebug stream() const;

private:
    int m_level;
    bool m_custom;
};

#endif
