#include "kelreplay/ReplayWindow.h"

#include "common/Program.h"
#include "kelreplay/text.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>

ReplayWindow::ReplayWindow(const Recording &recording, const QString &video, const ViewSettings &settings)
    : m_recording(recording), m_view(recording, video, settings)
{
    setWindowTitle(QFileInfo(recording.documentPath()).absolutePath());
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_view.widget());
    layout->addWidget(&m_line);
    m_view.widget()->installEventFilter(this);
    m_view.widget()->setFocus();
    m_timer.callOnTimeout(this, &ReplayWindow::next);
    go(0);
    resize(m_view.widget()->sizeHint() + QSize(24, 48));
}

bool ReplayWindow::eventFilter(QObject *, QEvent *event)
{
    return event->type() == QEvent::KeyPress && handle(static_cast<QKeyEvent *>(event)->key());
}

void ReplayWindow::keyPressEvent(QKeyEvent *event)
{
    if (!handle(event->key()) && event->key() == Qt::Key_Escape)
        close();
}

bool ReplayWindow::handle(int key)
{
    const int last = static_cast<int>(m_recording.frames().size()) - 1;
    const auto step = [this](int index) {
        play(false);
        go(index);
        return true;
    };
    switch (key) {
    case Qt::Key_Space:
        play(!m_timer.isActive());
        return true;
    case Qt::Key_Left:
        return step(m_current - 1);
    case Qt::Key_Right:
        return step(m_current + 1);
    case Qt::Key_PageUp:
        return step(m_current - 25);
    case Qt::Key_PageDown:
        return step(m_current + 25);
    case Qt::Key_Home:
        return step(0);
    case Qt::Key_End:
        return step(last);
    case Qt::Key_Q:
        close();
        return true;
    default:
        return false;
    }
}

void ReplayWindow::go(int index)
{
    m_current = std::clamp(index, 0, static_cast<int>(m_recording.frames().size()) - 1);
    const RecordedFrame &frame = m_recording.frames()[static_cast<size_t>(m_current)];
    QString line = QStringLiteral("frame %1 (%2 of %3)   %4   %5 objects")
                       .arg(QString::number(frame.number), QString::number(m_current + 1),
                            QString::number(m_recording.frames().size()), timeText(frame),
                            QString::number(frame.dataTypes.size()));
    try {
        m_view.show(m_current);
    } catch (const Failure &failure) { // nothing may leave an event handler
        line += QStringLiteral("   ") + QString::fromUtf8(failure.what());
        m_timer.stop();
    }
    m_line.setText(line);
}

void ReplayWindow::play(bool on)
{
    if (!on)
        return m_timer.stop();
    m_timer.start(0);
}

void ReplayWindow::next()
{
    const auto &frames = m_recording.frames();
    if (m_current + 1 >= static_cast<int>(frames.size()))
        return m_timer.stop();
    go(m_current + 1);
    const QDateTime from = frames[static_cast<size_t>(m_current) - 1].time;
    const QDateTime to = frames[static_cast<size_t>(m_current)].time;
    const qint64 pause = from.isNull() || to.isNull() ? 40 : from.msecsTo(to);
    m_timer.setInterval(static_cast<int>(std::clamp<qint64>(pause, 1, 5000)));
}
