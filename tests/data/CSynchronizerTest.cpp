#include <kelCore/data/CSynchronizer.h>

#include "support/Capture.h"

#include <ctime>
#include <type_traits>

namespace {

using Trajectory = std::map<CSynchronizer, cv::Point3f>;

CSynchronizer stamp(qint64 milliseconds, unsigned int frame = 0)
{
    CSynchronizer synchronizer;
    synchronizer.setDateTime(QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC));
    synchronizer.setFrameNumber(frame);
    return synchronizer;
}

} // namespace

TEST(CSynchronizerTest, AFreshStampHasANullTimeAndFrameZero)
{
    const CSynchronizer synchronizer;
    EXPECT_TRUE(synchronizer.getDateTime().isNull());
    EXPECT_EQ(synchronizer.getFrameNumber(), 0u);
    EXPECT_EQ(synchronizer.toMSecsSinceEpoch(), 0);
}

TEST(CSynchronizerTest, TheFrameNumberIsUnsigned32Bits)
{
    CSynchronizer synchronizer;
    synchronizer.setFrameNumber(4294967295u);
    EXPECT_EQ(synchronizer.getFrameNumber(), 4294967295u);
    static_assert(std::is_same<decltype(synchronizer.getFrameNumber()), unsigned int>::value, "");
}

TEST(CSynchronizerTest, GivesThePartsOfTheDateAndTheTime)
{
    CSynchronizer synchronizer;
    synchronizer.setDateTime(QDateTime(QDate(2012, 3, 4), QTime(12, 34, 56, 7), Qt::UTC));
    EXPECT_EQ(synchronizer.getYear(), 2012);
    EXPECT_EQ(synchronizer.getMonth(), 3);
    EXPECT_EQ(synchronizer.getDay(), 4);
    EXPECT_EQ(synchronizer.getHour(), 12);
    EXPECT_EQ(synchronizer.getMinute(), 34);
    EXPECT_EQ(synchronizer.getSecond(), 56);
    EXPECT_EQ(synchronizer.getMillisecond(), 7);
}

TEST(CSynchronizerTest, ThePartsAreThoseOfTheStampsOwnTimeSpecification)
{
    CSynchronizer synchronizer;
    synchronizer.setDateTime(QDateTime::fromMSecsSinceEpoch(0, Qt::OffsetFromUTC, 3600));
    EXPECT_EQ(synchronizer.getHour(), 1);
    EXPECT_EQ(synchronizer.toMSecsSinceEpoch(), 0);
}

TEST(CSynchronizerTest, CountsMillisecondsFromTheEpoch)
{
    CSynchronizer synchronizer;
    synchronizer.setDateTime(QDateTime(QDate(1970, 1, 1), QTime(0, 0, 1), Qt::UTC));
    EXPECT_EQ(synchronizer.toMSecsSinceEpoch(), 1000);
    EXPECT_EQ(stamp(-5).toMSecsSinceEpoch(), -5);
    EXPECT_EQ(stamp(253402300799999).toMSecsSinceEpoch(), 253402300799999);
}

TEST(CSynchronizerTest, CopiesAndAssignmentCarryTimeAndFrame)
{
    const CSynchronizer original = stamp(5, 6);
    const CSynchronizer copy(original);
    CSynchronizer assigned;
    EXPECT_EQ(&(assigned = original), &assigned);
    for (const CSynchronizer &other : {copy, assigned}) {
        EXPECT_EQ(other.getDateTime(), original.getDateTime());
        EXPECT_EQ(other.getFrameNumber(), 6u);
    }
}

TEST(CSynchronizerTest, OrdersByTimeEvenWhenTheLaterHasTheSmallerFrame)
{
    const CSynchronizer earlier = stamp(1000, 9);
    const CSynchronizer later = stamp(1001, 1);
    EXPECT_TRUE(earlier < later);
    EXPECT_FALSE(later < earlier);
    EXPECT_FALSE(earlier < earlier);
    EXPECT_TRUE(stamp(-1) < stamp(0));
    EXPECT_FALSE(earlier == later);
    EXPECT_TRUE(earlier != later);
}

TEST(CSynchronizerTest, TheFrameNumberTakesNoPartInComparisons)
{
    const CSynchronizer a = stamp(1000, 1);
    const CSynchronizer b = stamp(1000, 2);
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
}

TEST(CSynchronizerTest, EqualInstantsAreEqualWhateverTheirTimeSpecification)
{
    CSynchronizer elsewhere;
    elsewhere.setDateTime(QDateTime::fromMSecsSinceEpoch(1000, Qt::OffsetFromUTC, 3600));
    EXPECT_TRUE(elsewhere == stamp(1000));
    EXPECT_FALSE(elsewhere != stamp(1000));
    EXPECT_FALSE(elsewhere < stamp(1000));
    EXPECT_FALSE(stamp(1000) < elsewhere);
}

TEST(CSynchronizerTest, ADefaultStampEqualsOnlyAnotherAndOrdersAsTheEpoch)
{
    const CSynchronizer fresh;
    EXPECT_TRUE(fresh == CSynchronizer());
    EXPECT_FALSE(fresh != CSynchronizer());
    EXPECT_FALSE(fresh == stamp(0));
    EXPECT_FALSE(stamp(0) == fresh);
    EXPECT_TRUE(fresh != stamp(0));
    EXPECT_TRUE(fresh < stamp(1));
    EXPECT_TRUE(stamp(-1) < fresh);
    EXPECT_FALSE(fresh < stamp(0));
    EXPECT_FALSE(stamp(0) < fresh);
}

TEST(CSynchronizerTest, ADefaultStampOrdersAsTheEpochInEveryTimeZone)
{
    const QByteArray previous = qgetenv("TZ");
    for (const char *zone : {"EAST-5", "WEST5"}) {
        qputenv("TZ", zone);
        tzset();
        EXPECT_EQ(CSynchronizer().toMSecsSinceEpoch(), 0) << zone;
        EXPECT_TRUE(CSynchronizer() < stamp(1)) << zone;
        EXPECT_TRUE(stamp(-1) < CSynchronizer()) << zone;
        EXPECT_TRUE(CSynchronizer() == CSynchronizer()) << zone;
        EXPECT_FALSE(CSynchronizer() == stamp(0)) << zone;
    }
    qputenv("TZ", previous);
    tzset();
}

TEST(CSynchronizerTest, EqualityIsThatOfTheDateTimes)
{
    CSynchronizer timeOnly;
    timeOnly.setDateTime(QDateTime(QDate(), QTime(12, 0), Qt::UTC));
    EXPECT_EQ(timeOnly == CSynchronizer(), timeOnly.getDateTime() == QDateTime());
    EXPECT_EQ(timeOnly != CSynchronizer(), timeOnly.getDateTime() != QDateTime());
    EXPECT_FALSE(timeOnly == stamp(43200000));
}

TEST(CSynchronizerTest, InsertKeepsThePointThatIsThere)
{
    Trajectory trajectory;
    insert(stamp(1, 1), cv::Point3f(1, 2, 3), trajectory);
    insert(stamp(1, 2), cv::Point3f(4, 5, 6), trajectory);
    ASSERT_EQ(trajectory.size(), 1u);
    EXPECT_EQ(trajectory.begin()->second, cv::Point3f(1, 2, 3));
    EXPECT_EQ(trajectory.begin()->first.getFrameNumber(), 1u);
}

TEST(CSynchronizerTest, ATrajectoryIsOrderedByTime)
{
    Trajectory trajectory;
    insert(stamp(3), cv::Point3f(3, 0, 0), trajectory);
    insert(stamp(1), cv::Point3f(1, 0, 0), trajectory);
    insert(stamp(2), cv::Point3f(2, 0, 0), trajectory);
    QList<qint64> times;
    for (const auto &entry : trajectory)
        times.append(entry.first.toMSecsSinceEpoch());
    EXPECT_EQ(times, (QList<qint64>{1, 2, 3}));
}

TEST(CSynchronizerTest, AddingATrajectoryKeepsThePointsThatAreThere)
{
    Trajectory a;
    insert(stamp(1), cv::Point3f(1, 1, 1), a);
    insert(stamp(2), cv::Point3f(2, 2, 2), a);
    Trajectory b;
    insert(stamp(2), cv::Point3f(9, 9, 9), b);
    insert(stamp(3), cv::Point3f(3, 3, 3), b);
    EXPECT_EQ(&(a += b), &a);
    ASSERT_EQ(a.size(), 3u);
    EXPECT_EQ(a.at(stamp(1)), cv::Point3f(1, 1, 1));
    EXPECT_EQ(a.at(stamp(2)), cv::Point3f(2, 2, 2));
    EXPECT_EQ(a.at(stamp(3)), cv::Point3f(3, 3, 3));
    EXPECT_EQ(b.size(), 2u);
}

TEST(CSynchronizerTest, AddingATrajectoryToItselfChangesNothing)
{
    Trajectory trajectory;
    insert(stamp(1), cv::Point3f(1, 1, 1), trajectory);
    insert(stamp(2), cv::Point3f(2, 2, 2), trajectory);
    const Trajectory &same = trajectory;
    trajectory += same;
    EXPECT_EQ(trajectory.size(), 2u);
}
