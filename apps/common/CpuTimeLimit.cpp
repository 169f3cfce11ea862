#include "common/CpuTimeLimit.h"

#include "common/Failure.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/time.h>
#include <unistd.h>

namespace {

const QByteArray *lastWords = nullptr; // a handler can reach nothing but globals

void end(int)
{
    const ssize_t ignored =
        write(STDERR_FILENO, lastWords->constData(), static_cast<size_t>(lastWords->size()));
    static_cast<void>(ignored);
    _exit(Failed);
}

void setTimer(int seconds)
{
    const itimerval timer{{0, 0}, {seconds, 0}};
    setitimer(ITIMER_VIRTUAL, &timer, nullptr);
}

} // namespace

CpuTimeLimit::CpuTimeLimit(int seconds, const QString &line)
    : m_line((QCoreApplication::applicationName() + QStringLiteral(": ") + line + QLatin1Char('\n')).toUtf8())
{
    lastWords = &m_line;
    std::signal(SIGVTALRM, end);
    setTimer(seconds);
}

CpuTimeLimit::~CpuTimeLimit()
{
    setTimer(0);
    std::signal(SIGVTALRM, SIG_DFL);
    lastWords = nullptr;
}
