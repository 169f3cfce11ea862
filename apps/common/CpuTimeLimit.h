#ifndef APPS_COMMON_CPUTIMELIMIT_H
#define APPS_COMMON_CPUTIMELIMIT_H

/// \file
/// An end for parsers that may find none.

#include <QByteArray>
#include <QString>

/// Ends the program with one line and exit code 1 when it computes for longer than that while this object
/// lives; time spent waiting does not count. For other people's parsers: some damaged files keep OpenCV's
/// YAML parser busy for ever. One lives at a time.
class CpuTimeLimit
{
public:
    CpuTimeLimit(int seconds, const QString &line);
    ~CpuTimeLimit();

    CpuTimeLimit(const CpuTimeLimit &) = delete;
    CpuTimeLimit &operator=(const CpuTimeLimit &) = delete;

private:
    QByteArray m_line;
};

#endif
