#ifndef KELCORE_KELFILEWRITING_H
#define KELCORE_KELFILEWRITING_H

/// \file
/// How a recording reaches its two files. Internal.

#include <QByteArray>

class QString;

namespace kelDataFlow {

/// Replaces the content of the file at `path`; false when nothing was replaced.
///
/// A regular file is replaced in one step: whoever reads it finds the old content or the new one, never a
/// part. What a new file in its place would not be (a device, a FIFO, a file with several hard links) is
/// written into, and so is a file whose folder takes no second one. A full disk leaves the old content there
/// as well; whoever reads meanwhile may find a part.
bool replaceFile(const QString &path, const QByteArray &content);

/// Appends `bytes` to the file, whole or not at all; false when nothing was appended.
///
/// A shared `flock` keeps other appenders from cutting. What a full disk took of the bytes is cut off again
/// under an exclusive one, and only while it is the end of the file.
bool appendToFile(const char *path, const QByteArray &bytes);

} // namespace kelDataFlow

#endif
