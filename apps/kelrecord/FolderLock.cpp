#include "kelrecord/FolderLock.h"

#include "common/Failure.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

FolderLock::FolderLock(const QString &folder)
    : m_descriptor(open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (m_descriptor >= 0 && flock(m_descriptor, LOCK_EX | LOCK_NB) == 0)
        return;
    const int error = errno;
    if (m_descriptor >= 0)
        close(m_descriptor);
    throw Failure(lockProblem(folder, error));
}

FolderLock::~FolderLock() { close(m_descriptor); }

QString lockProblem(const QString &folder, int error)
{
    switch (error) {
    case EWOULDBLOCK:
        return QStringLiteral("another kelrecord is writing to %1; choose another folder for --out")
            .arg(folder);
    case EACCES:
    case EPERM:
        return QStringLiteral("the folder %1 cannot be opened; check that you may read and write it")
            .arg(folder);
    default:
        return QStringLiteral("the folder %1 cannot be locked: %2; choose one on another disk for --out")
            .arg(folder, qt_error_string(error));
    }
}
