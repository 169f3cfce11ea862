#include "kelrecord/StampClock.h"

#include "common/Failure.h"
#include "common/Recording.h"
#include "common/VideoSource.h"
#include "kelrecord/Settings.h"

#include <QFileInfo>

#include <cmath>

bool canBeRecorded(const QDateTime &time)
{
    return time.isValid() && time.date().year() >= 1 && time.date().year() <= 9999;
}

StampClock::StampClock(const Settings &settings, const VideoSource &source, const Recording *previous)
    : m_byIndex(!source.isCamera() || settings.framesPerSecond > 0),
      m_framesPerSecond(settings.framesPerSecond > 0 ? settings.framesPerSecond : source.framesPerSecond()),
      m_start(settings.start)
{
    if (previous && !previous->frames().empty())
        goOnBehind(previous->frames(), settings);
    if (!m_start.isValid() && !source.isCamera())
        m_start = QFileInfo(settings.video).lastModified().toUTC();
    if (!m_start.isValid()) // a camera, or an address
        m_start = QDateTime::currentDateTimeUtc();
}

CSynchronizer StampClock::stamp(int number) const
{
    const QDateTime time = m_byIndex ? at(static_cast<quint32>(number)) : QDateTime::currentDateTimeUtc();
    if (!canBeRecorded(time))
        throw Failure(
            QStringLiteral("the time of frame %1 is not in the years 1 to 9999, which a recording can "
                           "hold; give another --start or a greater --fps")
                .arg(number));
    CSynchronizer stamp;
    stamp.setFrameNumber(static_cast<unsigned>(number));
    stamp.setDateTime(time);
    return stamp;
}

QDateTime StampClock::at(quint32 number) const
{
    const double passed = number * 1000.0 / m_framesPerSecond;
    const double bound = 1e15; // ms, 30,000 years
    return passed < bound ? m_start.addMSecs(std::llround(passed)) : QDateTime();
}

void StampClock::goOnBehind(const std::vector<RecordedFrame> &frames, const Settings &settings)
{
    const RecordedFrame &first = frames.front();
    const RecordedFrame &last = frames.back();
    if (first.time.isNull() || last.time.isNull())
        return;
    const auto startFor = [&first](double fps) {
        return first.time.addMSecs(-std::llround(first.number * 1000.0 / fps));
    };
    if (settings.framesPerSecond <= 0 && last.number > first.number && first.time < last.time) {
        // Stamps are whole milliseconds: the rate that they give is taken only where no rounder one gives the
        // same.
        const double measured = (last.number - first.number) * 1000.0 / double(first.time.msecsTo(last.time));
        for (const double candidate : {m_framesPerSecond, std::round(measured), measured}) {
            m_framesPerSecond = candidate > 0 ? candidate : measured;
            m_start = startFor(m_framesPerSecond);
            if (at(last.number) == last.time)
                break;
        }
    }
    m_start = settings.start.isValid() ? settings.start : startFor(m_framesPerSecond);
}
