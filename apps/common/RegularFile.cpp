#include "common/RegularFile.h"

#include "common/Failure.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

PathKind kindOf(const QString &path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return PathKind::Missing;
    switch (status.st_mode & S_IFMT) {
    case S_IFREG:
        return PathKind::File;
    case S_IFDIR:
        return PathKind::Folder;
    case S_IFCHR:
        return PathKind::CharacterDevice;
    default:
        return PathKind::Other;
    }
}

void mustBeReadableFile(const QString &path, const QString &what)
{
    const PathKind kind = kindOf(path);
    if (kind == PathKind::Missing)
        throw Failure(QStringLiteral("there is no %1 file %2; check its name").arg(what, path));
    if (kind == PathKind::Folder)
        throw Failure(QStringLiteral("%1 is a folder; give a %2 file").arg(path, what));
    if (kind != PathKind::File)
        throw Failure(QStringLiteral("%1 is a pipe or a device; give a %2 file").arg(path, what));
    if (access(QFile::encodeName(path).constData(), R_OK) != 0)
        throw Failure(QStringLiteral("the %1 file %2 cannot be read; check its permissions").arg(what, path));
}

void mustBeFileOrFree(const QString &path)
{
    const PathKind kind = kindOf(path);
    if (kind != PathKind::Missing && kind != PathKind::File)
        throw Failure(QStringLiteral("%1 is %2, where a file is needed; remove it or take another place")
                          .arg(path,
                               kind == PathKind::Folder ? QStringLiteral("a folder")
                                                        : QStringLiteral("a pipe or a device")));
}

void mustBeWritableTarget(const QString &path)
{
    mustBeFileOrFree(path);
    const QString folder = QFileInfo(path).path();
    if (kindOf(folder) != PathKind::Folder)
        throw Failure(QStringLiteral("%1 cannot be written: there is no folder %2; make it first, or take "
                                     "another place")
                          .arg(path, folder));
    const bool isThere = kindOf(path) == PathKind::File;
    if (access(QFile::encodeName(isThere ? path : folder).constData(), W_OK) != 0)
        throw Failure(QStringLiteral("%1 cannot be written; check the permissions of %2")
                          .arg(path, isThere ? path : folder));
}
