#include <kelCore/utils/opencvutils.h>

#include "Windows.h"
#include "situations.h"
#include "support/Capture.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>

#include <QByteArray>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>

#include <set>
#include <string>
#include <thread>

// These hold whoever draws the windows: highgui, or the library itself.

namespace {

const QColor rare(12, 201, 33);

cv::Mat rareImage(int rows = 60, int columns = 80, int type = CV_8UC3)
{
    return cv::Mat(rows, columns, type, cv::Scalar(33, 201, 12, 255));
}

QByteArray loadedFiles()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) ? maps.readAll() : QByteArray();
}

/// "5" and "6", where files of both are loaded.
std::set<std::string> loadedQts()
{
    std::set<std::string> majors;
    const QRegularExpression library(QStringLiteral("/libQt([0-9]+)"));
    auto match = library.globalMatch(QString::fromLatin1(loadedFiles()));
    while (match.hasNext())
        majors.insert(match.next().captured(1).toStdString());
    return majors;
}

const std::set<std::string> ourQt{std::to_string(QT_VERSION_MAJOR)};

/// What the situation of that name says on standard error; "ended badly" when its process did.
QString told(const QString &situation)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {situation});
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return QStringLiteral("ended badly: ") + QString::fromLocal8Bit(process.readAllStandardError());
    return QString::fromLocal8Bit(process.readAllStandardError());
}

const char noWindow[] = "OpenCVUtils::showImage needs a QApplication, and its thread.";

bool withoutAnApplication(int &, char **)
{
    OpenCVUtils::showImage(rareImage(), QStringLiteral("first"), false);
    OpenCVUtils::showImage(rareImage(), QStringLiteral("second"), false);
    const bool shown = windowsOf("first").size() == 1 && windowsOf("second").size() == 1;
    close("first");
    close("second");
    const auto *made = qobject_cast<QApplication *>(QCoreApplication::instance());
    const bool good = shown && made && loadedQts() == ourQt;
    delete made; // or the leak checker finds what the fonts' library keeps for it
    return good;
}

template <class Application> bool withoutWidgets(int &argc, char **argv)
{
    Application application(argc, argv);
    OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), true);
    return true;
}

} // namespace

const std::vector<Situation> &situations()
{
    static const std::vector<Situation> list{{"without-application", withoutAnApplication},
                                             {"core-application", withoutWidgets<QCoreApplication>},
                                             {"gui-application", withoutWidgets<QGuiApplication>}};
    return list;
}

TEST(showImageTest, AnUnoptimisedProgramStartsAndShows)
{
    QByteArray text("one");
    text.append(" Qt"); // an inline function that other Qts have too
    ASSERT_EQ(text, "one Qt");
    EXPECT_EQ(loadedQts(), ourQt);
    OpenCVUtils::showImage(rareImage(), QStringLiteral("some title"), false);
    EXPECT_EQ(windowsOf("some title").size(), 1);
    EXPECT_GE(pixelsOf(rare, "some title"), 60 * 80);
    EXPECT_EQ(loadedQts(), ourQt);
    close("some title");
}

TEST(showImageTest, HighGuiIsLoadedWhenFirstWantedAndOnlyWithItsOwnQt)
{
    OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), false);
    EXPECT_EQ(loadedFiles().contains("libopencv_highgui"), QT_VERSION_MAJOR == 5)
        << "Debian 12's OpenCV draws its windows with Qt 5";
    close("title");
}

TEST(showImageTest, ATitleNamesOneWindow)
{
    OpenCVUtils::showImage(cv::Mat(60, 80, CV_8U, cv::Scalar(0)), QStringLiteral("title"), false);
    EXPECT_EQ(pixelsOf(rare, "title"), 0);
    OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), false);
    OpenCVUtils::showImage(rareImage(), QStringLiteral("other"), false);
    EXPECT_EQ(windowsOf("title").size(), 1);
    EXPECT_EQ(windowsOf("other").size(), 1);
    EXPECT_GE(pixelsOf(rare, "title"), 60 * 80);
    close("title");
    close("other");
    EXPECT_TRUE(windowsOf("title").isEmpty());
    OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), false);
    EXPECT_EQ(windowsOf("title").size(), 1);
    close("title");
}

TEST(showImageTest, WaitingEndsWithAKey)
{
    QElapsedTimer time;
    time.start();
    soon([] { pressKey("title", Qt::Key_Space); }, 150);
    OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), true);
    EXPECT_GE(time.elapsed(), 150);
    EXPECT_EQ(windowsOf("title").size(), 1);
    close("title");
}

TEST(showImageTest, WithoutWaitingItReturnsAtOnce)
{
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < 5; ++i)
        OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), false);
    EXPECT_LT(time.elapsed(), 5000);
    close("title");
}

TEST(showImageTest, AnImageOfTwoChannelsThrows)
{
    EXPECT_THROW(OpenCVUtils::showImage(rareImage(6, 8, CV_8UC2), QStringLiteral("title"), false),
                 cv::Exception);
    close("title");
}

TEST(showImageTest, FromAnotherThreadThereIsAWarningAndNoWindow)
{
    MessageCapture messages;
    std::thread([] { OpenCVUtils::showImage(rareImage(), QStringLiteral("title"), true); }).join();
    EXPECT_EQ(messages.lines(), QStringList{noWindow});
    EXPECT_TRUE(windowsOf("title").isEmpty());
}

TEST(showImageTest, WithoutAnApplicationOneIsMade)
{
    EXPECT_FALSE(told("without-application").contains("ended badly"))
        << told("without-application").toStdString();
}

TEST(showImageTest, AnApplicationWithoutWidgetsIsWarned)
{
    EXPECT_EQ(told("core-application"), QString(noWindow) + "\n");
    EXPECT_TRUE(told("gui-application").endsWith(QString(noWindow) + "\n"));
}
