#include "kelreplay/ReplayWindow.h"

#include "common/Program.h"
#include "kelreplay/text.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

namespace {

constexpr int page = 25; ///< frames
// Milliseconds that a frame is shown while playing.
constexpr int usualPause = 40; ///< where the recording does not tell
constexpr qint64 shortestPause = 1;
constexpr qint64 longestPause = 5000;
const QSize aroundView(24, 48); ///< pixels, for the line under it and the margins

} // namespace

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
    resize(m_view.widget()->sizeHint() + aroundView);
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
    const std::map<int, int> targets{
        {Qt::Key_Left, m_current - 1},
        {Qt::Key_Right, m_current + 1},
        {Qt::Key_PageUp, m_current - page},
        {Qt::Key_PageDown, m_current + page},
        {Qt::Key_Home, 0},
        {Qt::Key_End, last},
    };
    if (const auto target = targets.find(key); target != targets.end()) {
        play(false);
        go(target->second);
    } else if (key == Qt::Key_Space) {
        play(!m_timer.isActive());
    } else if (key == Qt::Key_Q) {
        close();
    } else {
        return false;
    }
    return true;
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
    const qint64 pause = from.isNull() || to.isNull() ? usualPause : from.msecsTo(to);
    m_timer.setInterval(static_cast<int>(std::clamp(pause, shortestPause, longestPause)));
}
