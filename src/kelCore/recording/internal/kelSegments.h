#ifndef KELCORE_KELSEGMENTS_H
#define KELCORE_KELSEGMENTS_H

/// \file
/// The folders of a run that is recorded in segments. Internal.

#include <kelCore/kelResult.h>
#include <kelCore/recording/internal/kelFileDescriptor.h>

#include <QString>

#include <string>
#include <vector>

namespace kelDataFlow {

inline const std::string documentName = "dataflow.xml";
inline const std::string recordsName = "dataflow.dat";

/// The folder of a segment: its number with at least six digits, "000001" being the first.
std::string segmentName(qint64 number);

/// Numbers of the segments in the folder, ascending: those folders of such a name that hold a recording, or
/// nothing.
std::vector<qint64> segmentsIn(int folder);

/// Whether the folder itself holds a recording, or a part of one.
bool holdsRecording(int folder);

/// Whether a part of it is there in compressed form alone.
bool isCompressed(int folder);

FileDescriptor openFolder(const QString &path);
FileDescriptor openFolder(int parent, const std::string &name);

/// Bytes of all files of a segment, as they are on disk.
qint64 bytesOfSegment(int segment);

/// Removes a segment with everything in its folder: first its name goes, in one step, and then what was in it.
/// \param path of the run.
kelResult removeSegment(const QString &path, int run, qint64 number);
/// Removes what `removeSegment` left when it was interrupted.
void removeLeftOverSegments(const QString &path, int run);

} // namespace kelDataFlow

#endif
