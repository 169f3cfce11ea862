#ifndef APPS_COMMON_PROGRAM_H
#define APPS_COMMON_PROGRAM_H

/// \file
/// What every program does the same way: it starts with or without a display, and ends bad input with one
/// line and an exit code.

#include "common/Failure.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class QApplication;

/// A program from its start to its exit code. One lives at a time.
class Program
{
public:
    /// Starts the toolkit and silences the libraries: the program reports what goes wrong itself. Where no
    /// window is wanted, or there is no display, the toolkit draws off screen. `argv` must outlive the object.
    Program(const char *name, int argc, char **argv, bool wantsWindow);
    ~Program();

    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /// True when a window was wanted and there is a display to show it on.
    bool hasDisplay() const { return m_display; }
    /// One line on standard error, with the program's name in front.
    void say(const QString &line) const;

    /// Does the work with the arguments behind the program's name, and turns what it throws into one line.
    /// \return the exit code.
    int run(const std::function<void(const QStringList &arguments)> &work) const;

private:
    QString m_name;
    bool m_display;
    int m_argc; ///< the toolkit keeps a reference to it
    std::unique_ptr<QApplication> m_application;
};

#endif
