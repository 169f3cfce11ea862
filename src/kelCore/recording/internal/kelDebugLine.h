#ifndef KELCORE_KELDEBUGLINE_H
#define KELCORE_KELDEBUGLINE_H

/// \file
/// Diagnostics of the recording on Qt's debug channel. Internal.

#include <QDebug>
#include <QLoggingCategory>

namespace kelDataFlow {

/// `text` between double quotes, otherwise as it is: `QDebug` would escape line breaks and quotes inside it.
inline QString quoted(const QString &text) { return QLatin1Char('"') + text + QLatin1Char('"'); }

/// True when somebody will see a debug line. One line costs several times what reading a record does.
inline bool debugShown() { return QLoggingCategory::defaultCategory()->isDebugEnabled(); }

/// One line of items separated by single blanks.
template <class... Items> void debugLine(const Items &...items)
{
    if (!debugShown())
        return;
    QDebug line = QMessageLogger().debug();
    line.noquote();
    (line << ... << items);
}

} // namespace kelDataFlow

#endif
