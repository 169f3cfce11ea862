#ifndef APPS_COMMON_OPERATORVIEW_H
#define APPS_COMMON_OPERATORVIEW_H

/// \file
/// Frames as an operator watches them.

#include "common/Follower.h"
#include "common/FrameView.h"

#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewRGBD.h>

#include <QScrollArea>
#include <QWidget>

/// The RGB-D view over the event timeline: boxes are followed, and shown as actors and events. Keys are the
/// RGB-D view's, and take effect at once.
class OperatorView : public QWidget, public FrameView
{
    Q_OBJECT

public:
    /// \param keys pressed before the first frame: characters that name keys of the view.
    /// \throws Failure when the scene's camera has no focal lengths.
    explicit OperatorView(const Scene &scene, const QString &keys = QString());

    QWidget *widget() override { return this; }
    void showShot(int index, const Shot &shot) override;
    void setFrameRate(int framesPerSecond) override { m_view.setFrameRate(framesPerSecond); }
    /// What the RGB-D view shows, black while it is turned off, and the timeline under it.
    cv::Mat picture() override;

    QSize sizeHint() const override;

protected:
    void follow(const CSynchronizer &stamp, const std::vector<cv::Rect> &boxes) override
    {
        m_follower.add(stamp, boxes);
    }
    void keyPressEvent(QKeyEvent *event) override;

private:
    void feedTimeline(int frame);
    void fitTimeline();
    void redraw();

    Follower m_follower;
    kelViewRGBD m_view;
    QWidget *const m_viewWidget = m_view.widget();
    kelViewEventTimeline m_timeline;
    QSize m_timelineSize; ///< in a picture
    QScrollArea m_scroll; ///< holds the timeline
    int m_fed = 0; ///< the frame behind the last one that the timeline knows
    Shot m_shot;
};

#endif
