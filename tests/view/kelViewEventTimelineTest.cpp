#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewEventTimeline_p.h>

#include "support/Capture.h"
#include "support/TimelineView.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPointer>
#include <QScreen>

#include <limits>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace timeline;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;

// What a fresh view is.

TEST(kelViewEventTimelineTest, TheClassDerivesFromTheFrameworksViewAndHoldsItsEventsItself)
{
    EXPECT_STREQ(kelViewEventTimeline::staticMetaObject.className(), "kelViewEventTimeline");
    EXPECT_STREQ(kelViewEventTimeline::staticMetaObject.superClass()->className(), "nubAbstractView");
    EXPECT_EQ(kelViewEventTimeline::staticMetaObject.methodCount(),
              kelViewEventTimeline::staticMetaObject.methodOffset());
    EXPECT_EQ(kelViewEventTimeline::staticMetaObject.propertyCount(),
              kelViewEventTimeline::staticMetaObject.propertyOffset());
    EXPECT_TRUE((std::is_base_of_v<nubAbstractViewPrivate, kelViewEventTimelinePrivate>));
    EXPECT_EQ(sizeof(kelViewEventTimeline),
              sizeof(nubAbstractObject) + sizeof(std::list<DataEvent>) + sizeof(CSynchronizer));
    EXPECT_FALSE(std::is_copy_constructible_v<kelViewEventTimeline>);
    EXPECT_FALSE(std::is_copy_assignable_v<kelViewEventTimeline>);
}

TEST(kelViewEventTimelineTest, ARowIsAPlainRecord)
{
    const DataEvent row{"Fall", 4, {{ago(2), ago(1)}}, "URGENT"};
    EXPECT_EQ(row.name, "Fall");
    EXPECT_EQ(row.actorId, 4);
    ASSERT_EQ(row.intervals.size(), 1u);
    EXPECT_EQ(row.intervals.front().first, ago(2));
    EXPECT_EQ(row.intervals.front().second, ago(1));
    EXPECT_EQ(row.alarmLevel, "URGENT");
    EXPECT_TRUE(DataEvent().name.isEmpty());
    EXPECT_EQ(DataEvent().actorId, -1);
    EXPECT_TRUE(DataEvent().intervals.empty());
    EXPECT_TRUE(DataEvent().alarmLevel.isEmpty());
}

TEST(kelViewEventTimelineTest, OnlyTheWidgetIsOverridden)
{
    kelViewEventTimeline view;
    EXPECT_EQ(view.identifier(), "kelViewEventTimeline");
    EXPECT_EQ(view.clone(), nullptr);
    EXPECT_TRUE(view.description().isEmpty());
    EXPECT_EQ(view.parent(), nullptr);
}

TEST(kelViewEventTimelineTest, ItsOwnOperationsAreNotVirtual)
{
    struct Derived : kelViewEventTimeline
    {
        void init() { ++calls; }
        void setEvents(std::list<Event>, CSynchronizer) { ++calls; }
        void removeOldEvents() { ++calls; }
        void updateDisplay() { ++calls; }
        int calls = 0;
    };
    Derived derived;
    kelViewEventTimeline &view = derived;
    view.init();
    view.setEvents({fall()}, now());
    view.removeOldEvents();
    view.updateDisplay();
    EXPECT_EQ(derived.calls, 0);
    EXPECT_EQ(rows(view), 1);
}

TEST(kelViewEventTimelineTest, TheWidgetIsAnAntialiasedFramelessGraphicsView)
{
    kelViewEventTimeline view;
    ASSERT_NE(view.widget(), nullptr);
    EXPECT_STREQ(view.widget()->metaObject()->className(), "QGraphicsView");
    EXPECT_EQ(view.widget(), view.widget());
    EXPECT_EQ(view.widget()->parentWidget(), nullptr);
    EXPECT_FALSE(view.widget()->isVisible());
    EXPECT_TRUE(graphicsView(view)->renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_EQ(graphicsView(view)->frameWidth(), 0);
}

TEST(kelViewEventTimelineTest, TheSceneHoldsOnePictureThatNothingIsDrawnInto)
{
    Timeline view({fall()});
    QGraphicsScene *scene = graphicsView(view)->scene();
    ASSERT_NE(scene, nullptr);
    EXPECT_STREQ(scene->metaObject()->className(), "QGraphicsScene");
    ASSERT_EQ(scene->items().size(), 1);
    const auto *item = dynamic_cast<QGraphicsPixmapItem *>(scene->items().first());
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->pixmap().isNull());
}

TEST(kelViewEventTimelineTest, ThePrivateObjectHoldsTheSceneTheWidgetAndThePicture)
{
    kelViewEventTimelinePrivate state;
    EXPECT_EQ(state.view->scene(), &state.scene);
    EXPECT_EQ(state.scene.items(), QList<QGraphicsItem *>{state.pixmapItem});
    EXPECT_TRUE(state.items.isEmpty());
}

TEST(kelViewEventTimelineTest, InitFixesSizeTitleAndAttribute)
{
    kelViewEventTimeline view;
    EXPECT_FALSE(view.widget()->testAttribute(static_cast<Qt::WidgetAttribute>(13)));
    view.init();
    EXPECT_EQ(view.widget()->size(), QSize(640, 480));
    EXPECT_EQ(view.widget()->minimumSize(), QSize(640, 480));
    EXPECT_EQ(view.widget()->maximumSize(), QSize(640, 480));
    EXPECT_EQ(view.widget()->windowTitle(), "Event time line");
    EXPECT_TRUE(view.widget()->testAttribute(static_cast<Qt::WidgetAttribute>(13)));
    EXPECT_FALSE(view.widget()->isVisible());
}

TEST(kelViewEventTimelineTest, TheFactoryMakesANewTimelineForTheCallerToOwn)
{
    const std::unique_ptr<nubAbstractView> first(createkelViewEventTimeline());
    const std::unique_ptr<nubAbstractView> second(createkelViewEventTimeline());
    EXPECT_NE(first, second);
    EXPECT_STREQ(first->metaObject()->className(), "kelViewEventTimeline");
    EXPECT_EQ(first->parent(), nullptr);
    EXPECT_NE(first->widget(), nullptr);
    EXPECT_NE(first->widget(), second->widget());
}

// The picture without events.

TEST(kelViewEventTimelineTest, UntilTheFirstUpdateTheWidgetIsAPlainGraphicsView)
{
    Timeline view;
    view.setEvents({fall()}, now());
    QGraphicsScene scene;
    QGraphicsView plain(&scene);
    plain.setFrameShape(QFrame::NoFrame);
    plain.setFixedSize(640, 480);
    EXPECT_TRUE(samePicture(picture(view), picture(&plain)));
}

TEST(kelViewEventTimelineTest, WithoutEventsThereIsTheHeaderOnWhite)
{
    Timeline view;
    view.show({});
    EXPECT_TRUE(looksLike(view, {}));
    EXPECT_EQ(rows(view), 0);
}

TEST(kelViewEventTimelineTest, TheHeaderLinesAreTwoPixelsWide)
{
    Timeline view;
    view.show({});
    const QImage shown = picture(view);
    EXPECT_THAT(alongRow(shown, 2), ElementsAre("black 199..200"));
    EXPECT_THAT(alongRow(shown, 29), ElementsAre("black 0..639"));
    EXPECT_THAT(alongRow(shown, 30), ElementsAre("black 0..639"));
    EXPECT_THAT(alongColumn(shown, 200), ElementsAre("black 0..30"));
    EXPECT_THAT(alongColumn(shown, 300), ElementsAre("black 29..30"));
}

TEST(kelViewEventTimelineTest, TheHeaderTextsStartAt2AndAt400)
{
    Timeline view;
    view.show({});
    const QImage shown = picture(view);
    const auto firstInk = [&](int from) {
        while (from < 640 && runs(shown.copy(from, 4, 1, 20)).empty())
            ++from;
        return from;
    };
    EXPECT_THAT(firstInk(0), AllOf(Ge(2), Le(4))) << "or there is no font";
    EXPECT_THAT(firstInk(201), AllOf(Ge(400), Le(402)));
}

TEST(kelViewEventTimelineTest, APictureAsWideAsTheWidgetKeepsItsTimeAxis)
{
    Timeline view({event("Fall", 4, ago(1000), now())});
    view.widget()->setFixedSize(800, 600);
    ExpectedTimeline expected({{"4/Fall", Qt::cyan, {{630, 640}}}});
    expected.setFixedSize(800, 600);
    EXPECT_TRUE(samePicture(picture(view), picture(&expected)));
    EXPECT_THAT(alongRow(picture(view), 30), ElementsAre("black 0..799"));
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 621..648"));
}

// Bars.

TEST(kelViewEventTimelineTest, ABarSpansItsTimeAndHalfAPenMore)
{
    Timeline view({event("Fall", 4, ago(50000), ago(40000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..248"));
    EXPECT_THAT(alongColumn(picture(view), 230), ElementsAre("black 29..30", "cyan 36..53"));
}

TEST(kelViewEventTimelineTest, EveryAlarmLevelHasItsColour)
{
    Timeline view({event("a", 1, ago(50000), ago(40000), "NOTURGENT"),
                   event("b", 1, ago(50000), ago(40000), "URGENT"),
                   event("c", 1, ago(50000), ago(40000), "VERYURGENT"),
                   event("d", 1, ago(50000), ago(40000), "SUPERURGENT")});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..248"));
    EXPECT_THAT(bars(view, 1), ElementsAre("green 131..248"));
    EXPECT_THAT(bars(view, 2), ElementsAre("dark green 131..248"));
    EXPECT_THAT(bars(view, 3), ElementsAre("red 131..248"));
    EXPECT_EQ(rows(view), 4);
    EXPECT_TRUE(looksLike(view,
                          {{"1/a", Qt::cyan, {{140, 240}}},
                           {"1/b", Qt::green, {{140, 240}}},
                           {"1/c", Qt::darkGreen, {{140, 240}}},
                           {"1/d", Qt::red, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, ABusyPictureIsTheOneOfTheSteps)
{
    Timeline view({event("Fall", 4, ago(30000), ago(25000), "SUPERURGENT"),
                   event("Enter zone", 12, ago(63000), ago(1234), "NOTURGENT"),
                   event("Leave zone", -1, ago(20050), ago(20049), ""),
                   event("Fall", 7, ago(9999), now(), "URGENT"),
                   event("Fall", 4, ago(12000), ago(11000), "NOTURGENT"),
                   event("", 0, ago(70000), ago(60000), "VERYURGENT")});
    EXPECT_TRUE(looksLike(view,
                          {{"4/Fall", Qt::red, {{340, 390}, {520, 530}}},
                           {"12/Enter zone", Qt::cyan, {{10, 628}}},
                           {"-1/Leave zone", std::nullopt, {{440, 440}}},
                           {"7/Fall", Qt::green, {{541, 640}}},
                           {"0/", Qt::darkGreen, {{-60, 40}}}}));
}

TEST(kelViewEventTimelineTest, AlarmLevelsAreComparedAsTheyAreSpelled)
{
    for (const char *level : {"urgent", "URGENT ", "NOT URGENT", "URGENTLY", ""}) {
        Timeline view({fall(level)});
        EXPECT_TRUE(looksLike(view, {{"4/Fall", std::nullopt, {{140, 240}}}})) << level;
    }
}

TEST(kelViewEventTimelineTest, AnUnknownLevelInTheFirstRowKeepsTheHeadersPen)
{
    Timeline view({fall("unknown")});
    EXPECT_THAT(alongColumn(picture(view), 230), ElementsAre("black 29..30", "black 44..45"));
    EXPECT_THAT(alongRow(picture(view).copy(100, 0, 540, 480), 44), ElementsAre("black 39..140"));
    EXPECT_TRUE(looksLike(view, {{"4/Fall", std::nullopt, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, AnUnknownLevelInALaterRowKeepsTheLabelsPen)
{
    Timeline view({event("a", 1, ago(50000), ago(40000), "SUPERURGENT"),
                   event("b", 1, ago(50000), ago(40000), "unknown"),
                   event("c", 1, ago(50000), ago(40000), "unknown")});
    EXPECT_THAT(alongColumn(picture(view), 230),
                ElementsAre("black 29..30", "red 36..53", "black 65..65", "black 85..85"));
    EXPECT_TRUE(looksLike(view,
                          {{"1/a", Qt::red, {{140, 240}}},
                           {"1/b", std::nullopt, {{140, 240}}},
                           {"1/c", std::nullopt, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, AKnownLevelAfterAnUnknownOneHasItsBar)
{
    Timeline view(
        {event("a", 1, ago(50000), ago(40000), "unknown"), event("b", 1, ago(50000), ago(40000), "URGENT")});
    EXPECT_THAT(bars(view, 1), ElementsAre("green 131..248"));
}

TEST(kelViewEventTimelineTest, AnEventThatEndsNowReachesTheRightEdge)
{
    Timeline view({event("Fall", 4, ago(1000), now())});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 621..639"));
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{630, 640}}}}));
}

TEST(kelViewEventTimelineTest, APixelIs100MillisecondsTruncatedTowardsNow)
{
    Timeline view({event("past", 1, ago(50099), ago(40100)), event("past", 2, ago(50100), ago(40099)),
                   event("future", 1, after(99), after(500)), event("future", 2, after(150), after(500)),
                   event("future", 3, after(200), after(500))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..247"));
    EXPECT_THAT(bars(view, 1), ElementsAre("cyan 130..248"));
    EXPECT_THAT(bars(view, 2), ElementsAre("cyan 631..639"));
    EXPECT_THAT(bars(view, 3), ElementsAre("cyan 632..639"));
    EXPECT_THAT(bars(view, 4), ElementsAre("cyan 633..639"));
}

TEST(kelViewEventTimelineTest, AnEventWithoutDurationIsASquare)
{
    Timeline view({event("Fall", 4, ago(40000), ago(40000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 231..248"));
    EXPECT_THAT(alongColumn(picture(view), 231), ElementsAre("black 29..30", "cyan 36..53"));
}

TEST(kelViewEventTimelineTest, AnEventThatEndsBeforeItBeginsIsDrawnAllTheSame)
{
    Timeline view({event("Fall", 4, ago(40000), ago(50000))});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{240, 140}}}}));
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..248"));
}

TEST(kelViewEventTimelineTest, AnEventThatBeganBeforeTheLeftEdgeIsClipped)
{
    Timeline view({event("Fall", 4, ago(100000), ago(40000)), event("Fall", 5, ago(70000), ago(64000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 0..248"));
    EXPECT_THAT(bars(view, 1), ElementsAre("cyan 0..8"));
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{-360, 240}}}, {"5/Fall", Qt::cyan, {{-60, 0}}}}));
}

TEST(kelViewEventTimelineTest, TimesFarAwayAreJustOutside)
{
    const qint64 least = std::numeric_limits<qint64>::min();
    const qint64 most = std::numeric_limits<qint64>::max();
    Timeline view({event("since 1970", 1, at(0), ago(40000)),
                   event("since -5000000", 1, at(least), ago(40000)), event("always", 1, at(least), at(most)),
                   event("until 3000", 1, ago(40000), at(32503680000000)),
                   event("for ever", 1, ago(40000), at(most)), event("then", 1, at(most), at(most))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 0..248"));
    EXPECT_THAT(bars(view, 1), ElementsAre("cyan 0..248"));
    EXPECT_THAT(bars(view, 2), ElementsAre("cyan 0..639"));
    EXPECT_THAT(bars(view, 3), ElementsAre("cyan 231..639"));
    EXPECT_THAT(bars(view, 4), ElementsAre("cyan 231..639"));
    EXPECT_THAT(bars(view, 5), IsEmpty());
    EXPECT_EQ(rows(view), 6);
    view.show({}, at(least));
    EXPECT_THAT(bars(view, 2), ElementsAre("cyan 631..639")) << "begins now";
    view.show({}, at(most));
    EXPECT_EQ(rows(view), 3) << "only what ends now is left";
}

// Rows.

TEST(kelViewEventTimelineTest, RowsStandInTheOrderOfFirstAppearance)
{
    Timeline view({event("b", 2, ago(50000), ago(40000)), event("a", 1, ago(50000), ago(40000))});
    view.show({event("a", 1, ago(50000), ago(30000)), event("c", 0, ago(50000), ago(40000)),
               event("b", 2, ago(50000), ago(20000))});
    EXPECT_TRUE(looksLike(
        view,
        {{"2/b", Qt::cyan, {{140, 440}}}, {"1/a", Qt::cyan, {{140, 340}}}, {"0/c", Qt::cyan, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, ARowBelongsToOneNameAndOneActor)
{
    Timeline view({event("Fall", 4, ago(50000), ago(40000)), event("Fall", 5, ago(50000), ago(40000)),
                   event("fall", 4, ago(50000), ago(40000)), event("Fall", 4, ago(50000), ago(40000))});
    EXPECT_TRUE(looksLike(view,
                          {{"4/Fall", Qt::cyan, {{140, 240}}},
                           {"5/Fall", Qt::cyan, {{140, 240}}},
                           {"4/fall", Qt::cyan, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, TheSameEventWithALaterEndGoesOn)
{
    Timeline view({event("Fall", 4, ago(50000), ago(40000))});
    view.show({event("Fall", 4, ago(50000), ago(30000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..348"));
    view.show({event("Fall", 4, ago(50000), ago(45000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..198")) << "one bar whose end moves, earlier as well";
    EXPECT_EQ(rows(view), 1);
}

TEST(kelViewEventTimelineTest, FrameNumbersDoNotTellBeginningsApart)
{
    CSynchronizer begin = ago(50000);
    Timeline view({event("Fall", 4, begin, ago(30000))});
    begin.setFrameNumber(7);
    begin.setDateTime(begin.getDateTime().toOffsetFromUtc(3600));
    view.show({event("Fall", 4, begin, ago(40000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..248"));
}

TEST(kelViewEventTimelineTest, TheSameEventWithANewBeginningIsASecondBar)
{
    Timeline view({event("Fall", 4, ago(50000), ago(40000))});
    view.show({event("Fall", 4, ago(30000), ago(20000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..248", "cyan 331..448"));
    EXPECT_EQ(rows(view), 1);
}

TEST(kelViewEventTimelineTest, OnlyTheLastBarOfARowGoesOn)
{
    Timeline view({event("Fall", 4, ago(50000), ago(45000)), event("Fall", 4, ago(30000), ago(25000))});
    view.show({event("Fall", 4, ago(30000), ago(20000))});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 190}, {340, 440}}}}));
    view.show({event("Fall", 4, ago(50000), ago(35000))});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 190}, {340, 440}, {140, 290}}}}));
    // Which of them is the oldest shows as they age.
    view.show({}, after(19001));
    view.show({});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{340, 440}, {140, 290}}}}));
    view.show({}, after(100000));
    view.show({});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 290}}}}));
}

TEST(kelViewEventTimelineTest, TheAlarmLevelIsTheFirstOccurrences)
{
    Timeline view({event("Fall", 4, ago(50000), ago(45000), "URGENT")});
    view.show({event("Fall", 4, ago(50000), ago(40000), "SUPERURGENT"),
               event("Fall", 4, ago(30000), ago(20000), "SUPERURGENT")});
    EXPECT_THAT(bars(view, 0), ElementsAre("green 131..248", "green 331..448"));
}

TEST(kelViewEventTimelineTest, ARowThatComesBackIsANewOne)
{
    Timeline view({event("a", 1, ago(50000), ago(40000), "URGENT"), event("b", 1, ago(5000), ago(4000))});
    view.show({}, after(24001));
    view.show({event("a", 1, now(), after(1000), "SUPERURGENT")}, after(24001));
    EXPECT_TRUE(looksLike(view, {{"1/b", Qt::cyan, {{350, 360}}}, {"1/a", Qt::red, {{400, 410}}}}));
}

TEST(kelViewEventTimelineTest, TheEventsAreReadNotKept)
{
    const Event given = fall();
    Timeline view({given});
    given->setSEDName("changed");
    given->setSEDEnd(now());
    view.updateDisplay();
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, NullEventsAreSkipped)
{
    Timeline view({Event(), fall(), Event()});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 240}}}}));
    view.show({Event()});
    EXPECT_EQ(rows(view), 1);
}

TEST(kelViewEventTimelineTest, NamesAreUtf8)
{
    Timeline view({event("Caf\u00e9", 4, ago(50000), ago(45000))});
    view.show({event("Caf\u00e9", 4, ago(50000), ago(40000))});
    EXPECT_TRUE(looksLike(view, {{QStringLiteral("4/Caf") + QChar(0xe9), Qt::cyan, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, ANameThatIsNotUtf8StillHasOneRow)
{
    Timeline view({event("entr\xe9", 4, ago(50000), ago(45000))});
    view.show({event("entr\xe9", 4, ago(50000), ago(40000))});
    EXPECT_TRUE(looksLike(view, {{QStringLiteral("4/entr") + QChar(0xfffd), Qt::cyan, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, NamesThatAreNotUtf8AreToldApartByTheirBytes)
{
    const char *const names[] = {"entr\xe9", "entr\xe8", "entr\xef\xbf\xbd", "\xff",
                                 "\xff\xff", "\xc3",     "\xc3\xa9",         "\xed\xb3\xa9"};
    Timeline view;
    for (int end = 45000; end >= 40000; end -= 1000) {
        std::list<Event> events;
        for (const char *name : names)
            events.push_back(event(name, 4, ago(50000), ago(end)));
        view.show(events);
        EXPECT_EQ(rows(view), 8);
    }
    for (int row = 0; row < 8; ++row)
        EXPECT_THAT(bars(view, row), ElementsAre("cyan 131..248"));
}

TEST(kelViewEventTimelineTest, TwoNamesThatAreNotUtf8LookAlike)
{
    const Event first = event("entr\xe9", 4, ago(50000), ago(40000));
    const Event second = event("entr\xe8", 4, ago(50000), ago(40000));
    const QString label = QStringLiteral("4/entr") + QChar(0xfffd);
    Timeline view({first, second, first});
    EXPECT_TRUE(looksLike(view, {{label, Qt::cyan, {{140, 240}}}, {label, Qt::cyan, {{140, 240}}}}));
}

// What a program asks for.

TEST(kelViewEventTimelineTest, TheContentIsAsHighAsItsRows)
{
    Timeline view;
    EXPECT_EQ(view.contentHeight(), kelViewEventTimeline::headerHeight + 4);
    std::list<Event> events;
    for (int i = 1; i <= 30; ++i) {
        events.push_back(event("Fall", i, ago(50000), ago(40000)));
        view.setEvents(events, after(0));
        EXPECT_EQ(view.contentHeight(), 36 + 20 * i + 4);
    }
    view.widget()->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    view.widget()->resize(640, view.contentHeight() + 100);
    view.show({});
    const QImage shown = picture(view);
    const auto isWhite = [&shown](int y) {
        for (int x = 0; x < shown.width(); ++x)
            if (shown.pixel(x, y) != qRgb(255, 255, 255))
                return false;
        return true;
    };
    EXPECT_FALSE(isWhite(view.contentHeight() - 8)) << "the last bar";
    for (int y = view.contentHeight(); y < shown.height(); ++y)
        EXPECT_TRUE(isWhite(y)) << y;
    view.setEvents({}, after(100000));
    EXPECT_EQ(view.contentHeight(), 40);
}

TEST(kelViewEventTimelineTest, ClearingBeginsANewTimeline)
{
    Timeline view({event("Fall", 4, ago(50000), ago(40000))});
    QWidget *widget = view.widget();
    view.clear();
    EXPECT_EQ(rows(view), 1) << "until the next update";
    view.updateDisplay();
    EXPECT_EQ(rows(view), 0);
    EXPECT_EQ(view.contentHeight(), 40);
    EXPECT_EQ(view.widget(), widget);
    view.show({event("Run", 2, ago(50000), ago(40000))});
    EXPECT_TRUE(looksLike(view, {{"2/Run", Qt::cyan, {{140, 240}}}}));
}

// Age.

TEST(kelViewEventTimelineTest, WhatEnded64SecondsAgoStaysAndOneMillisecondLaterItGoes)
{
    Timeline view({event("stays", 1, ago(90000), ago(64000)), event("goes", 1, ago(90000), ago(64001))});
    EXPECT_TRUE(looksLike(view, {{"1/stays", Qt::cyan, {{-260, 0}}}}));
    view.show({}, after(1));
    EXPECT_EQ(rows(view), 0);
}

TEST(kelViewEventTimelineTest, ARowLosesOneExpiredBarPerCallAndThenGoes)
{
    const CSynchronizer late = after(100000);
    Timeline view({event("Fall", 4, ago(60000), ago(58000)), event("Fall", 4, ago(50000), ago(48000)),
                   event("Fall", 4, ago(40000), ago(38000)), event("Other", 4, ago(2000), after(90000))});
    view.setEvents({}, late);
    view.show({});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 131..168", "cyan 231..268"));
    view.setEvents({}, late);
    view.show({});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 231..268"));
    EXPECT_EQ(rows(view), 2);
    view.setEvents({}, late);
    view.show({});
    EXPECT_TRUE(looksLike(view, {{"4/Other", Qt::cyan, {{620, 1540}}}}));
}

TEST(kelViewEventTimelineTest, EachCallDropsOneBarOfEveryRow)
{
    Timeline view({event("a", 1, ago(60000), ago(58000)), event("b", 1, ago(60000), ago(58000)),
                   event("a", 1, ago(50000), ago(48000)), event("b", 1, ago(50000), ago(48000)),
                   event("c", 1, ago(50000), ago(48000))});
    view.setEvents({}, after(100000));
    view.show({});
    EXPECT_TRUE(looksLike(view, {{"1/a", Qt::cyan, {{140, 160}}}, {"1/b", Qt::cyan, {{140, 160}}}}));
}

TEST(kelViewEventTimelineTest, RemovingOldEventsCanBeAskedFor)
{
    Timeline view({event("Fall", 4, ago(60000), ago(58000)), event("Fall", 4, ago(50000), ago(48000)),
                   event("Fall", 4, ago(40000), ago(38000))});
    view.setEvents({}, after(100000));
    view.removeOldEvents();
    view.updateDisplay();
    EXPECT_EQ(rows(view), 1);
    view.removeOldEvents();
    view.updateDisplay();
    EXPECT_EQ(rows(view), 0);
    view.removeOldEvents();
}

TEST(kelViewEventTimelineTest, AnExpiredBarBehindALivingOneStays)
{
    Timeline view({event("Fall", 4, ago(50000), ago(1000)), event("Fall", 4, ago(80000), ago(70000))});
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 630}, {-160, -60}}}}));
    view.show({}, ago(10000));
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{240, 730}, {-60, 40}}}}));
}

TEST(kelViewEventTimelineTest, AnEventThatIsTooOldWhenItComesDoesNotStay)
{
    Timeline view({event("Fall", 4, ago(90000), ago(80000))});
    EXPECT_EQ(rows(view), 0);
}

TEST(kelViewEventTimelineTest, BarsMoveLeftAsTimeGoesOn)
{
    Timeline view({fall()});
    view.show({}, after(1000));
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{130, 230}}}}));
}

// Time stamps without a time.

TEST(kelViewEventTimelineTest, ANullBeginningIsLongAgoAndEqualsItself)
{
    Timeline view({event("Fall", 4, CSynchronizer(), ago(50000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 0..148"));
    view.show({event("Fall", 4, CSynchronizer(), ago(40000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 0..248"));
    view.show({event("Fall", 4, at(0), ago(45000))});
    EXPECT_THAT(bars(view, 0), ElementsAre("cyan 0..248")) << "a second bar: null equals no time";
}

TEST(kelViewEventTimelineTest, ANullEndIsTooOld)
{
    Timeline view({event("Fall", 4, ago(50000), CSynchronizer()), Event(new kelDataEvent)});
    EXPECT_EQ(rows(view), 0);
}

TEST(kelViewEventTimelineTest, ANullFrameTimeIsTheEpoch)
{
    Timeline view({event("Fall", 4, at(-50000), at(-40000)), event("Future", 4, ago(50000), ago(40000)),
                   event("Null", 4, CSynchronizer(), CSynchronizer())},
                  CSynchronizer());
    EXPECT_TRUE(looksLike(view,
                          {{"4/Fall", Qt::cyan, {{140, 240}}},
                           {"4/Future", Qt::cyan, {{2000, 2000}}},
                           {"4/Null", Qt::cyan, {{640, 640}}}}));
}

TEST(kelViewEventTimelineTest, WithoutAnyFrameTheTimeIsTheEpochToo)
{
    Timeline view;
    view.removeOldEvents();
    view.updateDisplay();
    EXPECT_TRUE(looksLike(view, {}));
}

// The widget.

TEST(kelViewEventTimelineTest, WhatIsShownChangesOnlyByUpdateDisplay)
{
    Timeline view({fall()});
    const QImage shown = picture(view);
    view.setEvents({fall(), event("Other", 5, ago(20000), ago(10000))}, after(5000));
    EXPECT_TRUE(samePicture(picture(view), shown));
    view.setEvents({}, after(100000));
    view.removeOldEvents();
    EXPECT_TRUE(samePicture(picture(view), shown));
    view.updateDisplay();
    EXPECT_TRUE(looksLike(view, {}));
}

TEST(kelViewEventTimelineTest, AVisibleWidgetIsPaintedAtOnceAndOnlyByUpdateDisplay)
{
    Timeline view;
    view.widget()->show();
    QCoreApplication::processEvents();
    const PaintCounter paintings(graphicsView(view)->viewport());
    const auto onScreen = [&] {
        return QGuiApplication::primaryScreen()->grabWindow(view.widget()->winId(), 0, 0, 640, 480).toImage();
    };
    const QImage empty = onScreen();
    view.setEvents({fall()}, now());
    EXPECT_EQ(paintings.count, 0);
    EXPECT_TRUE(samePicture(onScreen(), empty));
    view.updateDisplay();
    EXPECT_EQ(paintings.count, 1);
    ExpectedTimeline expected({{"4/Fall", Qt::cyan, {{140, 240}}}});
    EXPECT_TRUE(samePicture(onScreen(), picture(&expected)));
    view.updateDisplay();
    EXPECT_EQ(paintings.count, 2);
}

TEST(kelViewEventTimelineTest, AWidgetShownLaterShowsTheLastUpdate)
{
    Timeline view({fall()});
    view.setEvents({fall("URGENT")}, after(10000));
    view.widget()->show();
    QCoreApplication::processEvents();
    EXPECT_TRUE(samePicture(
        QGuiApplication::primaryScreen()->grabWindow(view.widget()->winId(), 0, 0, 640, 480).toImage(),
        picture(view)));
    EXPECT_TRUE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 240}}}}));
}

TEST(kelViewEventTimelineTest, ItIsRenderedLikeAPlainWidget)
{
    Timeline view({fall("SUPERURGENT")});
    ExpectedTimeline expected({{"4/Fall", Qt::red, {{140, 240}}}});
    QImage image(640, 480, QImage::Format_ARGB32_Premultiplied);
    QImage expectedImage = image;
    image.fill(Qt::magenta);
    expectedImage.fill(Qt::blue);
    view.widget()->render(&image);
    expected.render(&expectedImage);
    EXPECT_TRUE(samePicture(image, expectedImage));
    view.widget()->render(&image, QPoint(20, 30), QRect(100, 20, 300, 100));
    expected.render(&expectedImage, QPoint(20, 30), QRect(100, 20, 300, 100));
    EXPECT_TRUE(samePicture(image, expectedImage));
}

TEST(kelViewEventTimelineTest, TheWidgetsFontIsKeptButForSizeAndWeight)
{
    for (const auto &[size, weight] : {std::pair(20, QFont::Black), std::pair(8, QFont::Light)}) {
        Timeline view({fall()});
        ExpectedTimeline expected({{"4/Fall", Qt::cyan, {{140, 240}}}});
        QFont font(view.widget()->font());
        font.setPointSize(size);
        font.setWeight(weight);
        font.setItalic(true);
        font.setUnderline(true);
        view.widget()->setFont(font);
        expected.setFont(font);
        EXPECT_TRUE(samePicture(picture(view), picture(&expected)));
        EXPECT_FALSE(looksLike(view, {{"4/Fall", Qt::cyan, {{140, 240}}}})) << "underlined";
    }
}

TEST(kelViewEventTimelineTest, ItIsBlackOnWhiteWhateverThePalette)
{
    Timeline view({fall()});
    const QImage shown = picture(view);
    view.widget()->setPalette(QPalette(Qt::yellow, Qt::darkBlue));
    EXPECT_TRUE(samePicture(picture(view), shown));
    view.widget()->setFixedSize(700, 500);
    EXPECT_EQ(QColor(picture(view).pixel(699, 499)), QColor(Qt::white)) << "all of the widget";
}

TEST(kelViewEventTimelineTest, NothingThatIsPutIntoTheSceneShows)
{
    Timeline view({fall()});
    const QImage shown = picture(view);
    graphicsView(view)->scene()->addRect(0, 0, 2000, 2000, QPen(Qt::red), QBrush(Qt::red));
    QCoreApplication::processEvents();
    EXPECT_TRUE(samePicture(picture(view), shown)) << "nor scroll bars";
}

TEST(kelViewEventTimelineTest, NothingIsSaidWhateverIsSet)
{
    const LogLevel level(0);
    MessageCapture messages;
    OutputCapture output;
    {
        Timeline view({Event(), fall(), event("", -1, CSynchronizer(), CSynchronizer(), "?")});
        view.widget()->show();
        view.show({}, CSynchronizer());
        picture(view);
    }
    EXPECT_EQ(messages.lines(), QStringList());
    EXPECT_EQ(output.take(), "");
}

// Lifetime.

TEST(kelViewEventTimelineTest, TheViewDeletesItsSceneAndItsWidget)
{
    nubAbstractView *view = createkelViewEventTimeline();
    const QPointer<QWidget> widget = view->widget();
    const QPointer<QGraphicsScene> scene = static_cast<QGraphicsView *>(view->widget())->scene();
    delete view;
    EXPECT_TRUE(widget.isNull());
    EXPECT_TRUE(scene.isNull());
}

TEST(kelViewEventTimelineTest, TheWidgetLeavesAParentThatLivesLonger)
{
    QWidget window;
    {
        Timeline view({fall()});
        view.widget()->setParent(&window);
        window.show();
        QCoreApplication::processEvents();
        EXPECT_EQ(window.children().size(), 1);
    }
    EXPECT_TRUE(window.children().isEmpty());
    QCoreApplication::processEvents();
}

TEST(kelViewEventTimelineTest, AParentWidgetMayDeleteTheWidgetFirst)
{
    MessageCapture messages;
    Timeline view({fall()});
    auto *window = new QWidget;
    view.widget()->setParent(window);
    window->show();
    delete window;
    EXPECT_EQ(view.widget(), nullptr);
    view.init();
    view.show({fall(), event("Other", 5, ago(20000), ago(10000))});
    view.removeOldEvents();
    EXPECT_EQ(view.widget(), nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelViewEventTimelineTest, ASceneEmptiedByTheApplicationDoesNoHarm)
{
    Timeline view({fall()});
    graphicsView(view)->scene()->clear();
    view.show({fall()});
    EXPECT_EQ(rows(view), 1);
}
