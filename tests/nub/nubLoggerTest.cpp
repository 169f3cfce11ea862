#include <nubLog/nubLog.h>

#include "support/Capture.h"

namespace {

/// An item that counts how often it is streamed.
struct CountedItem
{
    int *streamed;
};

QDebug operator<<(QDebug debug, const CountedItem &item)
{
    ++*item.streamed;
    return debug << "counted";
}

QList<QtMsgType> &typesSeen()
{
    static QList<QtMsgType> types;
    return types;
}

} // namespace

TEST(nubLoggerTest, ThereIsOneLoggerInTheProcess)
{
    const LogLevel level(42);
    EXPECT_EQ(&nubLogger::instance(), &nubLogger::instance());
    EXPECT_EQ(nubLogger::instance().level(), 42);
}

TEST(nubLoggerTest, TheLevelStartsWhereWarningsAreShownAndNoticesAreNot)
{
    EXPECT_EQ(nubLogger::instance().level(), 17);
}

TEST(nubLoggerTest, TheLevelsInUseAreTheStatedNumbers)
{
    EXPECT_EQ(nub::Trace, 0);
    EXPECT_EQ(nub::DefaultNotice, 1);
    EXPECT_EQ(nub::Warning, 17);
    EXPECT_EQ(nub::Rejected, 256);
}

TEST(nubLoggerTest, AMessageShowsWhenTheLevelIsAtMostItsOwn)
{
    for (const int own : {0, 1, 17, 256}) {
        for (const int current : {-1, 0, 1, 2, 16, 17, 18, 255, 256, 257}) {
            const LogLevel level(current);
            MessageCapture messages;
            nub::log(own, "message");
            EXPECT_EQ(messages.count("message"), current <= own ? 1 : 0) << own << " at level " << current;
        }
    }
}

TEST(nubLoggerTest, ItemsArePlainTextSeparatedBySingleBlanks)
{
    const LogLevel level(0);
    MessageCapture messages;
    nub::log(17, "a b", QStringLiteral("c \"d\"\n"), 5, -1.5, true);
    EXPECT_EQ(messages.lines(), QStringList{"a b c \"d\"\n 5 -1.5 true"});
}

TEST(nubLoggerTest, ASilencedMessageBuildsNothing)
{
    int streamed = 0;
    MessageCapture messages;
    {
        const LogLevel level(18);
        nub::log(17, CountedItem{&streamed});
        EXPECT_EQ(streamed, 0);
    }
    const LogLevel level(17);
    nub::log(17, CountedItem{&streamed});
    EXPECT_EQ(streamed, 1);
    EXPECT_EQ(messages.lines(), QStringList{"counted"});
}

TEST(nubLogEngineTest, KnowsItsLevelAndWhetherItIsCustom)
{
    EXPECT_EQ(nubLogEngine(17, false).level(), 17);
    EXPECT_FALSE(nubLogEngine(17).isCustom());
    EXPECT_TRUE(nubLogEngine(3, true).isCustom());
}

TEST(nubLogEngineTest, TheLineLeavesWhenTheStreamIsDestroyed)
{
    MessageCapture messages;
    const nubLogEngine engine(17, false);
    {
        QDebug stream = engine.stream();
        stream << "one"
               << "two";
        EXPECT_TRUE(messages.lines().isEmpty());
    }
    EXPECT_EQ(messages.lines(), QStringList{"one two"});
}

TEST(nubLogEngineTest, DoesNotLookAtTheLoggersLevel)
{
    const LogLevel level(1000);
    MessageCapture messages;
    nubLogEngine(0, false).stream() << "shown";
    EXPECT_EQ(messages.lines(), QStringList{"shown"});
}

TEST(nubLogEngineTest, EveryLevelGoesOutAsADebugMessage)
{
    typesSeen().clear();
    const LogLevel level(0);
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext &, const QString &) { typesSeen().append(type); });
    nub::log(0, "trace");
    nub::log(256, "rejected");
    qInstallMessageHandler(previous);
    EXPECT_EQ(typesSeen(), (QList<QtMsgType>{QtDebugMsg, QtDebugMsg}));
}
