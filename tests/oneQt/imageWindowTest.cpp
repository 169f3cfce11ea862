#include <kelCore/utils/internal/kelImageWindow.h>

#include "Windows.h"
#include "support/Capture.h"

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <QApplication>
#include <QElapsedTimer>

// The library's own windows, under every Qt.

namespace {

QImage shown(const QString &title)
{
    const QList<QWidget *> windows = windowsOf(title);
    return windows.size() == 1 ? windows.first()->grab().toImage() : QImage();
}

} // namespace

TEST(imageWindowTest, TheWindowIsTheImagePixelByPixel)
{
    const cv::Mat bgr =
        (cv::Mat_<cv::Vec3b>(1, 3) << cv::Vec3b(255, 0, 0), cv::Vec3b(1, 2, 3), cv::Vec3b(0, 9, 255));
    const cv::Mat bgra = (cv::Mat_<cv::Vec4b>(1, 2) << cv::Vec4b(1, 2, 3, 0), cv::Vec4b(4, 5, 6, 255));
    const cv::Mat gray = (cv::Mat_<uchar>(2, 3) << 0, 50, 100, 150, 200, 255);

    kelShowInWindow("colour", bgr);
    ASSERT_EQ(shown("colour").size(), QSize(3, 1));
    EXPECT_EQ(shown("colour").pixelColor(0, 0), QColor(0, 0, 255));
    EXPECT_EQ(shown("colour").pixelColor(1, 0), QColor(3, 2, 1));
    EXPECT_EQ(shown("colour").pixelColor(2, 0), QColor(255, 9, 0));

    kelShowInWindow("four", bgra);
    EXPECT_EQ(shown("four").pixelColor(0, 0), QColor(3, 2, 1));
    EXPECT_EQ(shown("four").pixelColor(1, 0), QColor(6, 5, 4));

    kelShowInWindow("gray", gray);
    ASSERT_EQ(shown("gray").size(), QSize(3, 2));
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(shown("gray").pixelColor(i % 3, i / 3),
                  QColor(50 * i + i / 5 * 5, 50 * i + i / 5 * 5, 50 * i + i / 5 * 5));
    for (const char *title : {"colour", "four", "gray"})
        close(title);
}

TEST(imageWindowTest, APartOfAWiderMatrixIsShownRowByRow)
{
    cv::Mat wide(3, 7, CV_8U, cv::Scalar(0));
    wide(cv::Rect(1, 1, 5, 2)).setTo(77);
    kelShowInWindow("part", wide(cv::Rect(1, 1, 5, 2)));
    EXPECT_EQ(pixelsOf(QColor(77, 77, 77), "part"), 10);
    close("part");
}

TEST(imageWindowTest, TheWindowOwnsItsPixels)
{
    cv::Mat image(4, 4, CV_8U, cv::Scalar(77));
    kelShowInWindow("owner", image);
    image.setTo(0);
    EXPECT_EQ(pixelsOf(QColor(77, 77, 77), "owner"), 16);
    close("owner");
}

TEST(imageWindowTest, TheWindowTakesTheSizeOfEachImage)
{
    kelShowInWindow("size", cv::Mat(10, 20, CV_8U, cv::Scalar(0)));
    EXPECT_EQ(shown("size").size(), QSize(20, 10));
    kelShowInWindow("size", cv::Mat(30, 5, CV_8U, cv::Scalar(0)));
    EXPECT_EQ(shown("size").size(), QSize(5, 30));
    close("size");
}

TEST(imageWindowTest, ATitleIsUtf8AndNamesOneWindow)
{
    for (int i = 0; i < 2; ++i)
        kelShowInWindow("\xc3\xa9t\xc3\xa9", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    EXPECT_EQ(windowsOf(QString::fromUtf8("\xc3\xa9t\xc3\xa9")).size(), 1);
    close(QString::fromUtf8("\xc3\xa9t\xc3\xa9"));
}

TEST(imageWindowTest, OtherChannelCountsThrowAndOpenNoWindow)
{
    for (const int type : {CV_8UC2, CV_8UC(5)})
        EXPECT_THROW(kelShowInWindow("bad", cv::Mat(2, 2, type, cv::Scalar(0))), cv::Exception);
    EXPECT_TRUE(windowsOf("bad").isEmpty());
}

TEST(imageWindowTest, AKeyIsTheResultOfTheWait)
{
    kelShowInWindow("key", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    soon([] { pressKey("key", Qt::Key_Q); });
    EXPECT_EQ(kelWaitForKey(-1), Qt::Key_Q);
    soon([] { pressKey("key", Qt::Key_W); });
    EXPECT_EQ(kelWaitForKey(60000), Qt::Key_W);
    EXPECT_EQ(kelWaitForKey(1), -1);
    close("key");
}

TEST(imageWindowTest, KeysOfOtherWindowsDoNotEndTheWait)
{
    kelShowInWindow("key", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    QWidget other;
    other.setWindowTitle("other");
    other.show();
    soon([] { pressKey("other", Qt::Key_A); }, 10);
    soon([] { pressKey("key", Qt::Key_B); }, 50);
    EXPECT_EQ(kelWaitForKey(0), Qt::Key_B);
    close("key");
}

TEST(imageWindowTest, TheWaitEndsAfterItsTime)
{
    kelShowInWindow("time", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(kelWaitForKey(50), -1);
    EXPECT_GE(time.elapsed(), 50);
    close("time");
}

TEST(imageWindowTest, TheWaitEndsWithTheLastWindowOnly)
{
    kelShowInWindow("a", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    kelShowInWindow("b", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    QElapsedTimer time;
    time.start();
    soon([] { close("a"); }, 10);
    soon([] { close("b"); }, 150);
    EXPECT_EQ(kelWaitForKey(-1), -1);
    EXPECT_GE(time.elapsed(), 150);
    EXPECT_EQ(kelWaitForKey(-1), -1); // no window, no key
}

TEST(imageWindowTest, AKeyEndsTheInnermostWaitAlone)
{
    kelShowInWindow("key", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    int inner = 0;
    soon([&] {
        soon([] { pressKey("key", Qt::Key_I); });
        inner = kelWaitForKey(-1);
        soon([] { pressKey("key", Qt::Key_O); });
    });
    EXPECT_EQ(kelWaitForKey(-1), Qt::Key_O);
    EXPECT_EQ(inner, Qt::Key_I);
    close("key");
}

TEST(imageWindowTest, AnApplicationThatWasToldToQuitStillWaits)
{
    QCoreApplication::exit();
    kelShowInWindow("quit", cv::Mat(4, 4, CV_8U, cv::Scalar(0)));
    soon([] { pressKey("quit", Qt::Key_Q); });
    EXPECT_EQ(kelWaitForKey(-1), Qt::Key_Q);
    close("quit");
}
