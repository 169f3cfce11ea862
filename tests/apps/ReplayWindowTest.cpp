#include "kelreplay/ReplayWindow.h"

#include "common/OperatorView.h"
#include "common/ViewSettings.h"

#include "apps/scenes.h"
#include "support/Capture.h"
#include "support/TemporaryFolder.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>

#include <opencv2/core.hpp>

#include <QElapsedTimer>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QList>

/// A recording of a box that moves to the right, a pixel a frame.
class ReplayWindowTest : public TemporaryFolder
{
protected:
    static constexpr int frameCount = 60;

    void SetUp() override
    {
        MessageCapture silence;
        OutputCapture output;
        kelAbstractProcessDataFlowWriter writer;
        writer.setFilePath(QFile("dataflow.xml"));
        for (int i = 0; i < frameCount; ++i) {
            QSharedPointer<kelDataBlob> blob(new kelDataBlob);
            blob->setBoundingBox2D_qt(QRect(60 + i, 70, 40, 40));
            writer.setSynchronizer(stampOf(i));
            writer.setDataFlow(QList<QSharedPointer<kelAbstractData>>{blob});
            ASSERT_TRUE(writer.writeDataFlow());
        }
    }

    static ViewSettings operatorView()
    {
        ViewSettings settings;
        settings.kind = ViewSettings::Kind::Operator;
        return settings;
    }

    /// A press of a key where the user's presses go.
    static void pressIn(ReplayWindow &window, int key) { press(*window.focusWidget(), key); }
};

TEST_F(ReplayWindowTest, TheWindowsKeysStepInEitherView)
{
    const Recording recording(".");
    for (const ViewSettings &settings : {ViewSettings(), operatorView()}) {
        ReplayWindow window(recording, QString(), settings);
        window.show();
        ASSERT_NE(window.focusWidget(), nullptr);
        EXPECT_EQ(window.current(), 0);
        const std::pair<int, int> steps[] = {{Qt::Key_Right, 1},  {Qt::Key_PageDown, 26}, {Qt::Key_Left, 25},
                                             {Qt::Key_PageUp, 0}, {Qt::Key_Left, 0},      {Qt::Key_End, 59},
                                             {Qt::Key_Right, 59}, {Qt::Key_Home, 0}};
        for (const auto &[key, expected] : steps) {
            pressIn(window, key);
            EXPECT_EQ(window.current(), expected) << key;
        }
        pressIn(window, Qt::Key_Space);
        while (window.current() < 3)
            QApplication::processEvents();
        pressIn(window, Qt::Key_Space);
        const int paused = window.current();
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 250)
            QApplication::processEvents();
        EXPECT_EQ(window.current(), paused);
        EXPECT_TRUE(window.isVisible());
        pressIn(window, Qt::Key_Q);
        EXPECT_FALSE(window.isVisible());
    }
}

TEST_F(ReplayWindowTest, EscapeClosesTheBaseView)
{
    const Recording recording(".");
    ReplayWindow window(recording, QString(), ViewSettings());
    window.show();
    pressIn(window, Qt::Key_B);
    EXPECT_TRUE(window.isVisible());
    pressIn(window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ReplayWindowTest, OtherKeysAreTheOperatorViewsAndTakeEffectWhilePaused)
{
    const Recording recording(".");
    ReplayWindow window(recording, QString(), operatorView());
    window.show();
    auto *view = window.findChild<OperatorView *>();
    ASSERT_NE(view, nullptr);
    pressIn(window, Qt::Key_PageDown);
    const cv::Mat before = view->picture().clone();
    pressIn(window, Qt::Key_B);
    EXPECT_GT(cv::norm(view->picture(), before, cv::NORM_INF), 0);
    pressIn(window, Qt::Key_B);
    EXPECT_EQ(cv::norm(view->picture(), before, cv::NORM_INF), 0);

    pressIn(window, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(view->picture().at<cv::Vec4b>(70, 100), cv::Vec4b(0, 0, 0, 255)) << "turned off";
    pressIn(window, Qt::Key_Escape);
    EXPECT_EQ(cv::norm(view->picture(), before, cv::NORM_INF), 0);
    EXPECT_EQ(window.current(), 25);
}

TEST_F(ReplayWindowTest, TheFrameRateIsTheRecordedOne)
{
    const Recording recording(".");
    ReplayWindow window(recording, QString(), operatorView());
    QStringList texts;
    for (const QGraphicsView *view : window.findChildren<QGraphicsView *>())
        for (const QGraphicsItem *item : view->scene()->items())
            if (const auto *text = dynamic_cast<const QGraphicsTextItem *>(item))
                texts.append(text->toPlainText());
    EXPECT_TRUE(texts.contains("FPS : 10")) << texts.join(", ").toStdString();
}

TEST_F(ReplayWindowTest, AJumpKnowsWhatCameBefore)
{
    const Recording recording(".");
    ReplayWindow playing(recording, QString(), operatorView());
    ReplayWindow jumping(recording, QString(), operatorView());
    for (int i = 0; i < frameCount; ++i)
        pressIn(playing, Qt::Key_Right);
    pressIn(jumping, Qt::Key_End);
    const cv::Mat played = playing.findChild<OperatorView *>()->picture();
    EXPECT_EQ(cv::norm(jumping.findChild<OperatorView *>()->picture(), played, cv::NORM_INF), 0);
    // The way of the last 29 frames, along the foot of the box.
    EXPECT_EQ(played.at<cv::Vec4b>(110, 60 + 59 + 20 - 25), cv::Vec4b(255, 0, 255, 255));
}
