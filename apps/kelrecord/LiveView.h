#ifndef APPS_KELRECORD_LIVEVIEW_H
#define APPS_KELRECORD_LIVEVIEW_H

/// \file
/// What a run looks like while it is recorded.

#include "common/PictureSink.h"
#include "common/SceneOverlay.h"

#include <kelCore/view/kelView.h>

#include <QWidget>

#include <optional>

class VideoSource;
struct Settings;

/// The base view, shown in a window, drawn to files, both or neither.
class LiveView
{
public:
    /// Opens the window where one is wanted and there is a display, and says so where there is none.
    LiveView(const Settings &settings, const VideoSource &source);

    void add(int number, const QSharedPointer<kelDataImage> &frame, const QSharedPointer<kelDataImage> &mask,
             const QList<QSharedPointer<kelDataBlob>> &blobs);

    /// True when the user has closed the window.
    bool closed() { return m_window && !m_view.widget()->isVisible(); }

private:
    const Settings &m_settings;
    SceneOverlay m_overlay; ///< over drawn frames
    kelView m_view;
    bool m_window = false;
    std::optional<PictureSink> m_sink;
};

#endif
