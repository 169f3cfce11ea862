#ifndef TESTS_ONEQT_WINDOWS_H
#define TESTS_ONEQT_WINDOWS_H

/// \file
/// What a user does with image windows, and sees of them.

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QKeyEvent>
#include <QList>
#include <QPixmap>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <functional>

/// The open windows of that title.
inline QList<QWidget *> windowsOf(const QString &title)
{
    QList<QWidget *> windows;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (widget->isVisible() && widget->windowTitle() == title)
            windows.append(widget);
    }
    return windows;
}

/// The pixels of a colour that the windows of that title show.
inline int pixelsOf(const QColor &color, const QString &title)
{
    int count = 0;
    const QList<QWidget *> windows = windowsOf(title);
    for (QWidget *window : windows) {
        const QImage shown = window->grab().toImage();
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x)
                count += shown.pixelColor(x, y) == color;
        }
    }
    return count;
}

inline void close(const QString &title)
{
    const QList<QWidget *> windows = windowsOf(title);
    for (QWidget *window : windows)
        window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

inline void pressKey(const QString &title, int key)
{
    const QList<QWidget *> windows = windowsOf(title);
    for (QWidget *window : windows) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    }
}

/// Does it while the program waits.
inline void soon(std::function<void()> action, int milliseconds = 20)
{
    QTimer::singleShot(milliseconds, qApp, std::move(action));
}

#endif
