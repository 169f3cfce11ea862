#ifndef APPS_COMMON_REGULARFILE_H
#define APPS_COMMON_REGULARFILE_H

/// \file
/// Files that are files: opening a named pipe waits for a partner who may never come, a device may have no
/// end, and neither can be gone back in or replaced.

#include <QString>

/// What stands at a path, symbolic links followed.
enum class PathKind
{
    Missing,
    File,
    Folder,
    CharacterDevice, ///< such as a camera
    Other ///< a pipe, a socket, a disk
};
PathKind kindOf(const QString &path);

/// \param what names the file's part in the message, such as "calibration".
/// \throws Failure when there is no regular file at `path`, or it cannot be read.
void mustBeReadableFile(const QString &path, const QString &what);

/// \throws Failure when something stands at `path` that is no regular file. A path that is free passes.
void mustBeFileOrFree(const QString &path);

/// As `mustBeFileOrFree`; the folder around `path` must be there too.
/// \throws Failure when a file cannot be made there.
void mustBeWritableTarget(const QString &path);

#endif
