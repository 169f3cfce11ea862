#ifndef TESTS_SUPPORT_CHILDPROCESS_H
#define TESTS_SUPPORT_CHILDPROCESS_H

/// \file
/// Runs a part of a test in a process of its own, where limits and rights can be taken away for good.

#include <csignal>
#include <functional>

#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs `body` in a process of its own; true when it returned true there.
inline bool inChild(const std::function<bool()> &body)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(body() ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Files of this process cannot grow beyond `size` any more: what fits is written, as on a full disk.
inline bool limitFileSize(long long size)
{
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{static_cast<rlim_t>(size), static_cast<rlim_t>(size)};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// Makes the rights of files count, which do not for the superuser.
inline bool becomeNobody() { return geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0); }

#endif
