#ifndef APPS_KELRECORD_PROGRESS_H
#define APPS_KELRECORD_PROGRESS_H

/// \file
/// Tells on standard error how far the work is.

#include <QElapsedTimer>

/// On a terminal one line that is written over, several times a second; otherwise a line every few seconds.
class Progress
{
public:
    /// \param total number of frames of the run; 0 when it is not known.
    Progress(int total, bool quiet);
    ~Progress();

    /// `frame` frames are done.
    void update(int frame);

private:
    int m_total;
    int m_first = -1; ///< frames done at the first call
    bool m_quiet;
    bool m_terminal;
    bool m_open = false; ///< a line on the terminal waits for its end
    QElapsedTimer m_clock;
    qint64 m_last = 0;
};

#endif
