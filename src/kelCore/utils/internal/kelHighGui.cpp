#include <kelCore/utils/internal/kelHighGui.h>

#include <kelCore/utils/internal/kelImageWindow.h>

#include <opencv2/core/utility.hpp>
#include <opencv2/highgui.hpp>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QRegularExpression>
#include <QThread>

#include <dlfcn.h>

// Null unless the program, or a library that it is linked with, defines them.
namespace cv {
__attribute__((weak)) void imshow(const String &window, InputArray image);
__attribute__((weak)) int waitKey(int delay);
} // namespace cv

namespace {

bool isUsable(const kelHighGui &gui) { return gui.imshow && gui.waitKey; }

/// Told by the build information in OpenCV's core, since loading highgui to see would load its Qt too. False
/// for windows of other toolkits as well.
bool highGuiHasOurQt()
{
    const QRegularExpression line(QStringLiteral("\\bQT:\\s+YES \\(ver %1\\.").arg(QT_VERSION_MAJOR));
    return line.match(QString::fromStdString(cv::getBuildInformation())).hasMatch();
}

/// The highgui that stands beside the core in use, of the same version; empty when that cannot be told.
QString highGuiFile()
{
    const QString core = QStringLiteral("opencv_core");
    Dl_info library;
    if (!dladdr(reinterpret_cast<void *>(&cv::getBuildInformation), &library))
        return QString();
    const QFileInfo file(QFile::decodeName(library.dli_fname));
    QString name = file.fileName();
    if (!name.contains(core))
        return QString();
    return file.path() + QLatin1Char('/') + name.replace(core, QStringLiteral("opencv_highgui"));
}

kelHighGui load()
{
    kelHighGui gui;
    const QString file = highGuiHasOurQt() ? highGuiFile() : QString();
    if (file.isEmpty())
        return gui;
    QLibrary library(file);
    gui.imshow = reinterpret_cast<decltype(gui.imshow)>(library.resolve(
        "_ZN2cv6imshowERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEERKNS_11_InputArrayE"));
    gui.waitKey = reinterpret_cast<decltype(gui.waitKey)>(library.resolve("_ZN2cv7waitKeyEi"));
    return gui;
}

/// Makes the application if there is none. It lives until the process ends, as windows do.
bool canOpenWindows()
{
    static int argc = 1;
    static char name[] = "kelCore";
    static char *argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QApplication(argc, argv);
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    return application && application->thread() == QThread::currentThread();
}

} // namespace

kelHighGui kelHighGui::find()
{
    kelHighGui linked;
    linked.imshow = cv::imshow;
    linked.waitKey = cv::waitKey;
    if (isUsable(linked))
        return linked;
    if (!canOpenWindows())
        return kelHighGui();
    static const kelHighGui loaded = load();
    return isUsable(loaded) ? loaded : kelHighGui{kelShowInWindow, kelWaitForKey};
}
