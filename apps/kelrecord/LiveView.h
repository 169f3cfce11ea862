#ifndef APPS_KELRECORD_LIVEVIEW_H
#define APPS_KELRECORD_LIVEVIEW_H

/// \file
/// What a run looks like while it is recorded.

#include "common/FrameView.h"
#include "common/PictureSink.h"

#include <QElapsedTimer>
#include <QWidget>

#include <deque>
#include <optional>

class CSynchronizer;
class Recording;
class VideoSource;
struct Settings;

/// A view, shown in a window, drawn to files, both or neither.
class LiveView
{
public:
    /// Opens the window where one is wanted.
    LiveView(const Settings &settings, const VideoSource &source);

    /// The run goes on behind that recording.
    void goOnBehind(const Recording &recording);
    /// Shows or draws the next frame of the run, where that is wanted.
    void add(const CSynchronizer &stamp, const Shot &shot);

    /// True when the user has closed the window.
    bool closed() { return m_window && !m_view->widget()->isVisible(); }

private:
    int framesPerSecond();

    const Settings &m_settings;
    std::unique_ptr<FrameView> m_view;
    bool m_window;
    std::optional<PictureSink> m_sink;
    QElapsedTimer m_clock;
    std::deque<qint64> m_times; ///< of the frames of the last second, in milliseconds
};

#endif
