#ifndef KELCORE_KELDATAFLOWREADING_P_H
#define KELCORE_KELDATAFLOWREADING_P_H

/// \file
/// What the stages of the recording share when they read. Internal.

class QDomDocument;
class QFile;
class kelAbstractData;
struct kelDataFlowRecord;

namespace kelDataFlow {

/// Parses an open file into `document` and closes it. When that fails, says so in two debug lines. A file
/// that is not open gives an empty message at line 0, column 0.
bool parse(QFile &file, QDomDocument &document);

/// The data object that `record` describes, with the record's map, or null for a type that is not rebuilt.
/// Says the data type on the debug channel. The caller owns the result.
kelAbstractData *rebuild(kelDataFlowRecord &record);

} // namespace kelDataFlow

#endif
