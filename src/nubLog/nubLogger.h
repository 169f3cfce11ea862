#ifndef NUBLOG_NUBLOGGER_H
#define NUBLOG_NUBLOGGER_H

/// \file
/// The process-wide logger: one threshold that decides which messages are built at all.

#include <nubLog/nubLogExport.h>

#include <atomic>

/// Holds the level of the whole process.
///
/// A message of level L is built and emitted only when `level()` is at most L. The level starts at 17:
/// warnings (17) and rejected input (256) are shown, default-implementation notices (1) and traces (0) are
/// not. Reading and setting the level is safe from any thread.
class NUBLOG_EXPORT nubLogger
{
public:
    static nubLogger &instance();

    int level() const { return m_level.load(std::memory_order_relaxed); }
    void setLevel(int level) { m_level.store(level, std::memory_order_relaxed); }

private:
    nubLogger() = default;

    std::atomic<int> m_level{17};
};

#endif
