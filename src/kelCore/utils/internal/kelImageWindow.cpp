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

    int run(int delay)
    {
        if (delay <= 0) {
            if (anyWindowIsOpen())
                m_loop.exec();
        } else {
            const QDeadlineTimer end(delay);
            do {
                m_loop.processEvents();
            } while (m_key == -1 && !end.hasExpired());
        }
        return m_key;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (!dynamic_cast<ImageWindow *>(watched))
            return false;
        const bool pressed = event->type() == QEvent::KeyPress;
        if (pressed)
            m_key = static_cast<QKeyEvent *>(event)->key();
        if (pressed || (event->type() == QEvent::Hide && !anyWindowIsOpen()))
            m_loop.quit();
        return pressed;
    }

private:
    QEventLoop m_loop;
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
