#ifndef APPS_KELREPLAY_TEXT_H
#define APPS_KELREPLAY_TEXT_H

/// \file
/// Recorded objects as text and as JSON.

#include <QJsonObject>
#include <QString>
#include <QVariant>

struct RecordedFrame;
struct kelDataFlowRecord;

/// A value in one line: rectangles and points by their numbers, what has no text by its type.
QString toText(const QVariant &value);
/// One line: the type, then each entry of the map.
QString toText(const kelDataFlowRecord &record);

/// A value as JSON: rectangles, sizes and points as objects of their numbers; what JSON cannot hold as its
/// type's name.
QJsonValue toJson(const QVariant &value);
/// {"type": ..., "properties": {...}}
QJsonObject toJson(const kelDataFlowRecord &record);

/// The time of a frame to the millisecond, or "no time".
QString timeText(const RecordedFrame &frame);

/// JSON in one line.
std::string compact(const QJsonObject &object);

#endif
