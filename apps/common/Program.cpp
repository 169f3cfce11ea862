#include "common/Program.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>

#include <QApplication>
#include <QLoggingCategory>

#include <cerrno>
#include <csignal>
#include <iostream>
#include <new>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

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

void silenceLibraries()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg) // the toolkit ends the program behind it
            std::cerr << QCoreApplication::applicationName().toStdString() << ": " << text.toStdString()
                      << std::endl;
    });
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    cv::redirectError([](int, const char *, const char *, const char *, int, void *) { return 0; });
    qputenv("OPENCV_FFMPEG_LOGLEVEL", "-8");
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
}

void prepareSignals()
{
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is a failing write, with its line
    // A shell that starts programs in the background may have them ignore Ctrl-C; `kill -INT` is how its
    // scripts end a run all the same.
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

} // namespace

Program::Program(const char *name, int argc, char **argv, bool wantsWindow)
    : m_name(QString::fromLatin1(name)), m_display(wantsWindow && displayAnswers()), m_argc(argc)
{
    prepareSignals();
    QCoreApplication::setApplicationName(m_name);
    QCoreApplication::setApplicationVersion(QStringLiteral(KEL_VERSION));
    silenceLibraries();
    if (!m_display)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    m_application = std::make_unique<QApplication>(m_argc, argv);
}

Program::~Program() = default;

void Program::say(const QString &line) const
{
    QString text = line; // names of files may hold anything, and one line is one line
    text.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
    std::cerr << m_name.toStdString() << ": " << text.toStdString() << std::endl;
}

int Program::run(const std::function<void(const QStringList &)> &work) const
{
    try {
        work(QCoreApplication::arguments().mid(1));
        std::cout.flush();
        if (!std::cout)
            throw Failure(QStringLiteral("standard output cannot be written; is the disk behind it full?"));
        return Done;
    } catch (const Failure &failure) {
        say(QString::fromUtf8(failure.what()));
        return failure.code();
    } catch (const cv::Exception &exception) {
        say(QStringLiteral("the image library failed: %1 (%2); is the video or a picture damaged?")
                .arg(QString::fromStdString(exception.err), QString::fromStdString(exception.func)));
    } catch (const std::bad_alloc &) {
        say(QStringLiteral("not enough memory; end other programs, or take a smaller input"));
    } catch (const std::exception &exception) {
        say(QStringLiteral("something went wrong that nobody has foreseen: %1; is the input damaged?")
                .arg(QString::fromLocal8Bit(exception.what())));
    }
    return Failed;
}
