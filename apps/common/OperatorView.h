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

#include <map>
#include <memory>
#include <string>
#include <utility>

class MyQGraphicsScene;
class QGraphicsView;

/// The RGB-D view over the event timeline: boxes are followed, and shown as actors and events. Keys are the
/// RGB-D view's, and take effect at once.
class OperatorView : public QWidget, public FrameView
{
    Q_OBJECT

public:
    /// \param keys pressed before the first frame, out of `switchKeys`.
    /// \throws Failure when the scene's camera has no focal lengths.
    explicit OperatorView(const Scene &scene, const QString &keys = QString());

    /// The keys that have a character, one each.
    static QString switchKeys() { return QStringLiteral("BZGDATEIFWLP+-"); }

    QWidget *widget() override { return this; }
    Follower *follower() override { return &m_follower; }
    void showShot(const Shot &shot) override;
    void setFrameRate(int framesPerSecond) override { m_view.setFrameRate(framesPerSecond); }
    /// What the RGB-D view shows, black while it is turned off, and the timeline under it.
    cv::Mat picture() override;

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void feedTimeline(int frame);
    void restartTimeline();
    void fitTimeline();
    int timelineHeight() const;
    void redraw();

    Follower m_follower;
    kelViewRGBD m_view;
    QGraphicsView *m_viewWidget;
    MyQGraphicsScene *m_switches; ///< the view's scene
    QScrollArea m_scroll; ///< holds the timeline
    std::unique_ptr<kelViewEventTimeline> m_timeline;
    int m_fed = 0; ///< the frame behind the last one that the timeline knows
    std::map<std::pair<int, std::string>, qint64> m_rows; ///< of the timeline: milliseconds of the last event
    Shot m_shot;
};

#endif
