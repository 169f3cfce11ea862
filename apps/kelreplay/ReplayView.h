#ifndef APPS_KELREPLAY_REPLAYVIEW_H
#define APPS_KELREPLAY_REPLAYVIEW_H

/// \file
/// Recorded frames in the base view.

#include "common/Recording.h"
#include "common/SceneOverlay.h"
#include "common/VideoSource.h"

#include <kelCore/view/kelView.h>

#include <memory>

/// Puts recorded frames into the base view: the boxes of the binary records, over the video's picture of the
/// same number where there is a video, over black otherwise.
class ReplayView
{
public:
    /// \param video its path; empty for none.
    ReplayView(const Recording &recording, const QString &video);

    /// Shows the frame at `index` of the recording.
    void show(int index);
    /// The frame shown last, rendered, with the overlay drawn over it.
    cv::Mat picture(const SceneOverlay &overlay);
    QWidget *widget() { return m_view.widget(); }

private:
    cv::Mat background(const RecordedFrame &frame);

    const Recording &m_recording;
    std::unique_ptr<VideoSource> m_video;
    cv::Mat m_canvas; ///< black, large enough for all recorded boxes
    kelView m_view;
};

#endif
