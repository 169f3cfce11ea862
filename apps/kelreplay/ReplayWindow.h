#ifndef APPS_KELREPLAY_REPLAYWINDOW_H
#define APPS_KELREPLAY_REPLAYWINDOW_H

/// \file
/// The window that steps through a recording.

#include "kelreplay/ReplayView.h"

#include <QLabel>
#include <QTimer>
#include <QWidget>

/// The view, with a line under it that says which frame is shown. Keys: blank plays and pauses, left and
/// right step, page keys step by 25, home and end go to the first and last frame, Q and Escape close.
class ReplayWindow : public QWidget
{
    Q_OBJECT

public:
    ReplayWindow(const Recording &recording, const QString &video);

    /// The index of the frame shown.
    int current() const { return m_current; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    /// Keys go to the window, wherever the focus is.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
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
