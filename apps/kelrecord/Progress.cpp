#include "kelrecord/Progress.h"

#include <QString>

#include <algorithm>
#include <iostream>

#include <unistd.h>

Progress::Progress(int total, bool quiet)
    : m_total(total), m_quiet(quiet), m_terminal(isatty(STDERR_FILENO) == 1)
{
    m_clock.start();
}

Progress::~Progress()
{
    if (m_open)
        std::cerr << std::endl;
}

void Progress::update(int frame)
{
    if (m_first < 0)
        m_first = frame - 1;
    const qint64 interval = m_terminal ? 200 : 3000; // ms
    const qint64 now = m_clock.elapsed();
    if (m_quiet || (now - m_last < interval && frame != m_total))
        return;
    m_last = now;

    const double rate = (frame - m_first) * 1000.0 / static_cast<double>(std::max<qint64>(now, 1));
    QString line = QStringLiteral("frame %1").arg(frame);
    if (m_total > 0)
        line += QStringLiteral(" of %1").arg(m_total);
    line += QStringLiteral(", %1 frames/s").arg(rate, 0, 'f', 1);
    if (m_total > frame && rate > 0)
        line += QStringLiteral(", %1 s left").arg((m_total - frame) / rate, 0, 'f', 0);
    if (m_terminal)
        std::cerr << '\r' << line.leftJustified(60).toStdString() << std::flush;
    else
        std::cerr << line.toStdString() << std::endl;
    m_open = m_terminal;
}
