#ifndef KELCORE_CSYNCHRONIZER_H
#define KELCORE_CSYNCHRONIZER_H

/// \file
/// The time stamp of a frame, and the trajectory: positions keyed by time stamp.

#include <opencv2/core/types.hpp>

#include <QDateTime>

#include <map>

/// Time stamp of one frame: when it was taken, to the millisecond, and its index in its stream.
///
/// Order and equality look at the time alone. Two stamps of the same millisecond are equal whatever their
/// frame numbers, deliberately: the time, not the index, is the key of a trajectory.
///
/// A default-constructed stamp has a null date-time. It orders as 0 ms since the epoch and equals no
/// stamp that has a time.
class CSynchronizer
{
public:
    void setFrameNumber(unsigned int number) { frameNumber = number; }
    void setDateTime(const QDateTime &time) { dateTime = time; }

    unsigned int getFrameNumber() const { return frameNumber; }
    QDateTime getDateTime() const { return dateTime; }

    // As the date-time's own clock shows them; 0 for the date and -1 for the time of a null one.
    int getYear() const { return dateTime.date().year(); }
    int getMonth() const { return dateTime.date().month(); }
    int getDay() const { return dateTime.date().day(); }
    int getHour() const { return dateTime.time().hour(); }
    int getMinute() const { return dateTime.time().minute(); }
    int getSecond() const { return dateTime.time().second(); }
    int getMillisecond() const { return dateTime.time().msec(); }

    /// Milliseconds since 1970-01-01T00:00:00 UTC; 0 for a null date-time.
    qint64 toMSecsSinceEpoch() const { return dateTime.isNull() ? 0 : dateTime.toMSecsSinceEpoch(); }

    bool operator<(const CSynchronizer &other) const
    {
        return toMSecsSinceEpoch() < other.toMSecsSinceEpoch();
    }
    bool operator==(const CSynchronizer &other) const { return dateTime == other.dateTime; }
    bool operator!=(const CSynchronizer &other) const { return !(*this == other); }

private:
    QDateTime dateTime;
    quint32 frameNumber = 0;
};

/// Adds (`sync`, `point`) to the trajectory `map` unless it already holds a point of that time, which then
/// stays.
inline void insert(const CSynchronizer &sync, cv::Point3f point, std::map<CSynchronizer, cv::Point3f> &map)
{
    map.emplace(sync, point);
}

/// Adds the points of trajectory `b` to `a`. Where both hold a point of the same time, `a`'s stays.
inline std::map<CSynchronizer, cv::Point3f> &operator+=(std::map<CSynchronizer, cv::Point3f> &a,
                                                        const std::map<CSynchronizer, cv::Point3f> &b)
{
    a.insert(b.begin(), b.end());
    return a;
}

#endif
