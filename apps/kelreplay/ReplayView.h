#ifndef APPS_KELREPLAY_REPLAYVIEW_H
#define APPS_KELREPLAY_REPLAYVIEW_H

/// \file
/// Recorded frames in a view.

#include "common/FrameView.h"
#include "common/Recording.h"
#include "common/VideoSource.h"

#include <memory>

struct ViewSettings;

/// Puts recorded frames into a view: the boxes of the binary records, over the video's picture of the same
/// number where there is a video, over black otherwise.
class ReplayView
{
public:
    /// \param video its path; empty for none.
    ReplayView(const Recording &recording, const QString &video, const ViewSettings &settings);

    /// Shows the frame at `index` of the recording.
    void show(int index);
    /// The frame shown last, drawn.
    cv::Mat picture() { return m_view->picture(); }
    QWidget *widget() { return m_view->widget(); }

private:
    cv::Mat background(const RecordedFrame &frame);

    const Recording &m_recording;
    std::unique_ptr<VideoSource> m_video;
    cv::Mat m_canvas; ///< black, large enough for all recorded boxes
    std::unique_ptr<FrameView> m_view;
};

#endif
