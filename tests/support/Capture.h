#ifndef TESTS_SUPPORT_CAPTURE_H
#define TESTS_SUPPORT_CAPTURE_H

/// \file
/// What the tests catch: Qt's messages, standard output, and the logger's level. Each object does so for as
/// long as it lives.

#include <nubLog/nubLogger.h>

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <functional>
#include <string>
#include <utility>

/// Catches every message that goes through Qt, in order. Only one can live at a time.
class MessageCapture
{
public:
    MessageCapture()
    {
        current() = this;
        m_previous = qInstallMessageHandler(&MessageCapture::handle);
    }
    ~MessageCapture()
    {
        qInstallMessageHandler(m_previous);
        current() = nullptr;
    }
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    const QStringList &lines() const { return m_lines; }
    int count(const QString &line) const { return static_cast<int>(m_lines.count(line)); }
    /// True while every message so far, taken or not, was a debug message.
    bool onlyDebug() const { return m_onlyDebug; }
    /// Calls `look` when a message arrives, before it is caught.
    void whenCaught(std::function<void()> look) { m_look = std::move(look); }
    /// The lines caught so far, which are forgotten.
    QStringList take()
    {
        const QStringList lines = m_lines;
        m_lines.clear();
        return lines;
    }

private:
    static MessageCapture *&current()
    {
        static MessageCapture *capture = nullptr;
        return capture;
    }
    static void handle(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        MessageCapture *capture = current();
        if (!capture)
            return;
        if (capture->m_look)
            capture->m_look();
        capture->m_lines.append(text);
        capture->m_onlyDebug = capture->m_onlyDebug && type == QtDebugMsg;
    }

    QtMessageHandler m_previous = nullptr;
    QStringList m_lines;
    std::function<void()> m_look;
    bool m_onlyDebug = true;
};

/// Catches what is written to standard output, at the level of the file descriptor.
class OutputCapture
{
public:
    OutputCapture() { testing::internal::CaptureStdout(); }
    ~OutputCapture()
    {
        if (m_open)
            take();
    }
    OutputCapture(const OutputCapture &) = delete;
    OutputCapture &operator=(const OutputCapture &) = delete;

    /// What was written so far; ends the capture.
    std::string take()
    {
        m_open = false;
        return testing::internal::GetCapturedStdout();
    }

private:
    bool m_open = true;
};

/// Sets the logger's level, and puts the old one back.
class LogLevel
{
public:
    explicit LogLevel(int level) : m_previous(nubLogger::instance().level())
    {
        nubLogger::instance().setLevel(level);
    }
    ~LogLevel() { nubLogger::instance().setLevel(m_previous); }
    LogLevel(const LogLevel &) = delete;
    LogLevel &operator=(const LogLevel &) = delete;

private:
    int m_previous;
};

inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }

/// The warning that copying between unlike classes logs.
inline QString slicingWarning()
{
    return QStringLiteral("Other is not of same type than this, slicing is occuring.");
}

/// The notice that a default body logs.
inline QString defaultNotice(const char *signature, const char *className)
{
    return QStringLiteral("Using default implementation of %1 for %2")
        .arg(QLatin1String(signature), QLatin1String(className));
}

#endif
