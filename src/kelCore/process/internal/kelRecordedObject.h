#ifndef KELCORE_KELRECORDEDOBJECT_H
#define KELCORE_KELRECORDEDOBJECT_H

/// \file
/// How a record becomes a data object. Internal.

class kelAbstractData;
class kelRecordReader;
struct kelDataFlowRecord;

/// The object of the next record, with the record's map, or null for a type that is not rebuilt. Says the
/// data type on the debug channel before the map is read. The caller owns the result. `record` is working
/// memory that consecutive records share.
kelAbstractData *kelReadRecordedObject(kelRecordReader &reader, kelDataFlowRecord &record);

#endif
