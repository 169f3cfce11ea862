#include "common/Program.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>

#include <QApplication>
#include <QCommandLineParser>
#include <QLoggingCategory>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <limits>
#include <new>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString &programName()
{
    static QString name;
    return name;
}

bool &onDisplay()
{
    static bool display = false;
    return display;
}

/// Asks the toolkit, in a process of its own, whether a window can be opened: where it cannot, the toolkit
/// ends the process that asks.
bool displayAnswers()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return false;
    const pid_t child = fork();
    if (child < 0)
        return false;
    if (child == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        int argc = 1;
        char name[] = "probe";
        char *argv[] = {name, nullptr};
        QGuiApplication probe(argc, argv);
        _exit(0);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The programs report what goes wrong themselves, in one line.
void silenceLibraries()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg)
            say(text);
    });
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    cv::redirectError([](int, const char *, const char *, const char *, int, void *) { return 0; });
    qputenv("OPENCV_FFMPEG_LOGLEVEL", "-8");
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
}

} // namespace

void say(const QString &line)
{
    std::cerr << programName().toStdString() << ": " << line.toStdString() << std::endl;
}

bool hasDisplay() { return onDisplay(); }

int runProgram(const char *name, int argc, char **argv, bool wantsWindow,
               const std::function<void(const QStringList &)> &work)
{
    programName() = QString::fromLatin1(name);
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is a failing write, with its line
    silenceLibraries();
    onDisplay() = wantsWindow && displayAnswers();
    if (!onDisplay())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    application.setApplicationName(programName());
    application.setApplicationVersion(QStringLiteral(KEL_VERSION));

    try {
        work(application.arguments().mid(1));
        std::cout.flush();
        if (!std::cout)
            throw Failure(QStringLiteral("standard output cannot be written"));
        return Done;
    } catch (const Failure &failure) {
        say(QString::fromUtf8(failure.what()));
        return failure.code();
    } catch (const cv::Exception &exception) {
        say(QStringLiteral("the image library failed: %1 (%2)")
                .arg(QString::fromStdString(exception.err), QString::fromStdString(exception.func)));
    } catch (const std::bad_alloc &) {
        say(QStringLiteral("not enough memory"));
    } catch (const std::exception &exception) {
        say(QString::fromLocal8Bit(exception.what()));
    }
    return Failed;
}

bool parse(QCommandLineParser &parser, const QStringList &arguments, const QString &usage,
           const QString &notes)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version."));
    parser.addOption(help);
    parser.addOption(version);
    if (!parser.parse(QStringList{programName()} + arguments))
        throw misuse(parser.errorText());
    if (parser.isSet(help)) {
        const QString text = parser.helpText();
        std::cout << "Usage: " << usage.toStdString() << '\n'
                  << text.mid(text.indexOf(QLatin1Char('\n')) + 1).toStdString() << '\n'
                  << notes.toStdString();
        return false;
    }
    if (parser.isSet(version)) {
        std::cout << programName().toStdString() << " " KEL_VERSION << '\n';
        return false;
    }
    return true;
}

int integerOption(const QCommandLineParser &parser, const QString &option, int least, int otherwise)
{
    if (!parser.isSet(option))
        return otherwise;
    bool ok = false;
    const int value = parser.value(option).toInt(&ok);
    if (!ok || value < least)
        throw misuse(QStringLiteral("--%1 takes a whole number from %2 on, not \"%3\"")
                         .arg(option, QString::number(least), parser.value(option)));
    return value;
}

double realOption(const QCommandLineParser &parser, const QString &option, double otherwise)
{
    if (!parser.isSet(option))
        return otherwise;
    bool ok = false;
    const double value = parser.value(option).toDouble(&ok);
    if (!ok || !std::isfinite(value) || value <= 0)
        throw misuse(QStringLiteral("--%1 takes a number greater than 0, not \"%2\"")
                         .arg(option, parser.value(option)));
    return value;
}
