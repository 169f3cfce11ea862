#ifndef APPS_KELRECORD_STAMPCLOCK_H
#define APPS_KELRECORD_STAMPCLOCK_H

/// \file
/// The time stamps of a run.

#include <kelCore/data/CSynchronizer.h>

#include <vector>

class Recording;
class VideoSource;
struct RecordedFrame;
struct Settings;

/// True when a recording can hold the time: from the year 1 to the year 9999, which ISO 8601 can write.
bool canBeRecorded(const QDateTime &time);

/// Stamps frames: by the clock for a camera, by their index otherwise. All times are UTC.
class StampClock
{
public:
    /// What the settings leave open comes from the recording that is gone on with, or else from the video.
    /// \param previous null when the recording begins.
    StampClock(const Settings &settings, const VideoSource &source, const Recording *previous);

    /// \throws Failure when no recording can hold the frame's time.
    CSynchronizer stamp(int number) const;

private:
    /// Null when it is out of all bounds.
    QDateTime at(quint32 number) const;
    void goOnBehind(const std::vector<RecordedFrame> &frames, const Settings &settings);

    bool m_byIndex;
    double m_framesPerSecond;
    QDateTime m_start; ///< of the frame numbered 0
};

#endif
