#include <kelCore/utils/internal/kelImageWindow.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <QApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QPixmap>

namespace {

class ImageWindow : public QLabel
{
public:
    explicit ImageWindow(const QString &title)
    {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(title);
    }
};

/// The first open window that `wanted` holds for, or null.
template <class Predicate> ImageWindow *openWindow(Predicate wanted)
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *window = dynamic_cast<ImageWindow *>(widget);
        if (window && window->isVisible() && wanted(*window))
            return window;
    }
    return nullptr;
}

bool anyWindowIsOpen()
{
    return openWindow([](const ImageWindow &) { return true; }) != nullptr;
}

/// One wait for a key. The key ends the innermost wait alone.
class KeyWait : public QObject
{
public:
    KeyWait() { QCoreApplication::instance()->installEventFilter(this); }

    /// No event loop of its own: once an application has been told to quit, as closing its last window may do,
    /// a loop ends at once and would never wait again.
    int run(int delay)
    {
        const QDeadlineTimer end =
            delay > 0 ? QDeadlineTimer(delay) : QDeadlineTimer(QDeadlineTimer::Forever);
        const auto how = delay > 0 ? QEventLoop::AllEvents : QEventLoop::WaitForMoreEvents;
        if (anyWindowIsOpen()) {
            do {
                QCoreApplication::processEvents(how);
            } while (m_key == -1 && anyWindowIsOpen() && !end.hasExpired());
        }
        return m_key;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress || !dynamic_cast<ImageWindow *>(watched))
            return false;
        m_key = static_cast<QKeyEvent *>(event)->key();
        return true;
    }

private:
    int m_key = -1;
};

QImage toImage(const cv::Mat &matrix)
{
    cv::Mat rgb;
    switch (matrix.channels()) {
    case 1:
        cv::cvtColor(matrix, rgb, cv::COLOR_GRAY2RGB);
        break;
    case 3:
        cv::cvtColor(matrix, rgb, cv::COLOR_BGR2RGB);
        break;
    case 4:
        cv::cvtColor(matrix, rgb, cv::COLOR_BGRA2RGB);
        break;
    default:
        CV_Error(cv::Error::BadNumChannels, "An image has 1, 3 or 4 channels");
    }
    return QImage(rgb.data, rgb.cols, rgb.rows, static_cast<int>(rgb.step), QImage::Format_RGB888).copy();
}

} // namespace

void kelShowInWindow(const cv::String &title, cv::InputArray image)
{
    const QPixmap pixmap = QPixmap::fromImage(toImage(image.getMat()));
    const QString name = QString::fromStdString(title);
    ImageWindow *window =
        openWindow([&](const ImageWindow &candidate) { return candidate.windowTitle() == name; });
    const bool isNew = !window;
    if (isNew)
        window = new ImageWindow(name);
    window->setPixmap(pixmap);
    window->setFixedSize(pixmap.size());
    if (isNew)
        window->show();
}

int kelWaitForKey(int delay) { return KeyWait().run(delay); }
