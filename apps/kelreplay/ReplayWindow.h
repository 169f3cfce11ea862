#ifndef APPS_KELREPLAY_REPLAYWINDOW_H
#define APPS_KELREPLAY_REPLAYWINDOW_H

/// \file
/// The window that steps through a recording.

#include "kelreplay/ReplayView.h"

#include <QLabel>
#include <QTimer>
#include <QWidget>

/// The view, with a line under it that says which frame is shown. Keys: blank plays and pauses, left and
/// right step, page keys step by 25, home and end go to the first and last frame, Q closes. All others go to
/// the view; Escape closes where the view has no use for it.
class ReplayWindow : public QWidget
{
    Q_OBJECT

public:
    ReplayWindow(const Recording &recording, const QString &video, const ViewSettings &settings);

    /// The index of the frame shown.
    int current() const { return m_current; }

protected:
    /// What the view has left over.
    void keyPressEvent(QKeyEvent *event) override;
    /// Takes the window's own keys before the view gets them.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// False when the key is not the window's.
    bool handle(int key);
    void go(int index);
    void play(bool on);
    void next();

    const Recording &m_recording;
    ReplayView m_view;
    QLabel m_line;
    QTimer m_timer;
    int m_current = 0;
};

#endif
