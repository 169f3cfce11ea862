#ifndef APPS_KELRECORD_FOLDERLOCK_H
#define APPS_KELRECORD_FOLDERLOCK_H

/// \file
/// One writer to a folder.

#include <QString>

/// Holds a folder for this process alone. The lock is on the folder itself: nothing is left behind when the
/// process is killed.
class FolderLock
{
public:
    /// \throws Failure when another process holds the folder, or it cannot be locked.
    explicit FolderLock(const QString &folder);
    ~FolderLock();

    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

private:
    int m_descriptor;
};

/// Why a folder could not be locked, and what to do.
/// \param error the system's error number.
QString lockProblem(const QString &folder, int error);

#endif
