#ifndef KELCORE_KELRESULT_H
#define KELCORE_KELRESULT_H

/// \file
/// How an operation tells that it failed.

#include <QString>

/// The outcome of an operation: done, or what is wrong, where, and what to do about it.
///
///     if (const kelResult written = writer.write(stamp, objects); !written)
///         std::cerr << written.line().toStdString() << std::endl;
///
/// A failure is a value: nothing is thrown, printed or logged for it.
class [[nodiscard]] kelResult
{
public:
    /// Done.
    kelResult() = default;

    /// \param what   what is wrong, without a full stop: "the disk is full".
    /// \param where  the file, the frame, the option that it is about; empty where `what` names it.
    /// \param advice what the user can do; empty where that is plain.
    static kelResult failure(const QString &what, const QString &where = QString(),
                             const QString &advice = QString())
    {
        kelResult result;
        result.m_failed = true;
        result.m_what = what;
        result.m_where = where;
        result.m_advice = advice;
        return result;
    }

    explicit operator bool() const { return !m_failed; }

    const QString &what() const { return m_what; }
    const QString &where() const { return m_where; }
    const QString &advice() const { return m_advice; }

    /// All of it in one line: "WHERE: WHAT; ADVICE". Empty when done.
    QString line() const
    {
        QString line = m_where.isEmpty() ? m_what : m_where + QStringLiteral(": ") + m_what;
        if (!m_advice.isEmpty())
            line += QStringLiteral("; ") + m_advice;
        return line;
    }

private:
    bool m_failed = false;
    QString m_what;
    QString m_where;
    QString m_advice;
};

#endif
