#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataEvent.h>

#include "support/Capture.h"

#include <limits>
#include <memory>
#include <type_traits>

namespace {
CSynchronizer at(qint64 msecs, unsigned int frame = 0)
{
    CSynchronizer sync;
    sync.setDateTime(QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC));
    sync.setFrameNumber(frame);
    return sync;
}

/// Every field differs from its start value and from every other field.
void fill(kelDataEvent &event)
{
    event.setSEDAlarmLevel("urgent");
    event.setSEDBegin(at(1000, 10));
    event.setSEDConfidence(0.75);
    event.setSEDDuration(2.5);
    event.setSEDEnd(at(3000, 30));
    event.setSEDId(4000000000u);
    event.setSEDLatency(0.125);
    event.setSEDName("fall");
    event.setSEDType("composite");
    event.setInvolvedActorId(-7);
}

void expectFilled(const kelDataEvent &event)
{
    EXPECT_EQ(event.getSEDAlarmLevel(), "urgent");
    EXPECT_EQ(event.getSEDBegin(), at(1000));
    EXPECT_EQ(event.getSEDBegin().getFrameNumber(), 10u);
    EXPECT_EQ(event.getSEDConfidence(), 0.75);
    EXPECT_EQ(event.getSEDDuration(), 2.5);
    EXPECT_EQ(event.getSEDEnd(), at(3000));
    EXPECT_EQ(event.getSEDEnd().getFrameNumber(), 30u);
    EXPECT_EQ(event.getSEDId(), 4000000000u);
    EXPECT_EQ(event.getSEDLatency(), 0.125);
    EXPECT_EQ(event.getSEDName(), "fall");
    EXPECT_EQ(event.getSEDType(), "composite");
    EXPECT_EQ(event.getInvolvedActorId(), -7);
}

template <class Getter, class Expected> constexpr bool is = std::is_same_v<Getter, Expected>;
} // namespace

TEST(kelDataEventTest, AFreshEventIsEmpty)
{
    const kelDataEvent event;
    EXPECT_EQ(event.getSEDAlarmLevel(), "");
    EXPECT_EQ(event.getSEDBegin(), CSynchronizer());
    EXPECT_EQ(event.getSEDConfidence(), 0.0);
    EXPECT_EQ(event.getSEDDuration(), 0.0);
    EXPECT_EQ(event.getSEDEnd(), CSynchronizer());
    EXPECT_EQ(event.getSEDId(), 0u);
    EXPECT_EQ(event.getSEDLatency(), 0.0);
    EXPECT_EQ(event.getSEDName(), "");
    EXPECT_EQ(event.getSEDType(), "");
    EXPECT_EQ(event.getInvolvedActorId(), -1);
    EXPECT_EQ(event.identifier(), "kelDataEvent");
    EXPECT_STREQ(event.metaObject()->className(), "kelDataEvent");
    EXPECT_EQ(event.parent(), nullptr);
}

TEST(kelDataEventTest, TheAccessorsHaveTheirTypes)
{
    using E = kelDataEvent;
    EXPECT_TRUE((is<decltype(&E::getSEDAlarmLevel), std::string (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDAlarmLevel), void (E::*)(std::string)>));
    EXPECT_TRUE((is<decltype(&E::getSEDBegin), const CSynchronizer &(E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDBegin), void (E::*)(const CSynchronizer &)>));
    EXPECT_TRUE((is<decltype(&E::getSEDConfidence), double (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDConfidence), void (E::*)(double)>));
    EXPECT_TRUE((is<decltype(&E::getSEDDuration), double (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDDuration), void (E::*)(double)>));
    EXPECT_TRUE((is<decltype(&E::getSEDEnd), const CSynchronizer &(E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDEnd), void (E::*)(const CSynchronizer &)>));
    EXPECT_TRUE((is<decltype(&E::getSEDId), unsigned int (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDId), void (E::*)(unsigned int)>));
    EXPECT_TRUE((is<decltype(&E::getSEDLatency), double (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDLatency), void (E::*)(double)>));
    EXPECT_TRUE((is<decltype(&E::getSEDName), std::string (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDName), void (E::*)(std::string)>));
    EXPECT_TRUE((is<decltype(&E::getSEDType), std::string (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setSEDType), void (E::*)(std::string)>));
    EXPECT_TRUE((is<decltype(&E::getInvolvedActorId), int (E::*)() const>));
    EXPECT_TRUE((is<decltype(&E::setInvolvedActorId), void (E::*)(int)>));
}

TEST(kelDataEventTest, EachSetterStoresWhatItIsGivenInItsOwnField)
{
    kelDataEvent event;
    fill(event);
    expectFilled(event);
}

TEST(kelDataEventTest, BeginAndEndAreReturnedAsTheFieldsThemselves)
{
    kelDataEvent event;
    const CSynchronizer &begin = event.getSEDBegin();
    const CSynchronizer &end = event.getSEDEnd();
    event.setSEDBegin(at(1, 2));
    event.setSEDEnd(at(3, 4));
    EXPECT_EQ(begin.getFrameNumber(), 2u);
    EXPECT_EQ(end.getFrameNumber(), 4u);
}

TEST(kelDataEventTest, NothingChecksBeginEndAndDurationAgainstOneAnother)
{
    kelDataEvent event;
    event.setSEDBegin(at(5000));
    event.setSEDEnd(at(1000));
    event.setSEDDuration(-3);
    EXPECT_EQ(event.getSEDBegin(), at(5000));
    EXPECT_EQ(event.getSEDEnd(), at(1000));
    EXPECT_EQ(event.getSEDDuration(), -3.0);
    event.setSEDEnd(at(9000));
    EXPECT_EQ(event.getSEDDuration(), -3.0);
    EXPECT_EQ(event.getSEDBegin(), at(5000));
}

TEST(kelDataEventTest, NumbersAreStoredWhole)
{
    kelDataEvent event;
    event.setSEDId(std::numeric_limits<unsigned int>::max());
    event.setInvolvedActorId(std::numeric_limits<int>::min());
    event.setSEDConfidence(1e300);
    event.setSEDName(std::string("a\0b", 3));
    EXPECT_EQ(event.getSEDId(), 4294967295u);
    EXPECT_EQ(event.getInvolvedActorId(), std::numeric_limits<int>::min());
    EXPECT_EQ(event.getSEDConfidence(), 1e300);
    EXPECT_EQ(event.getSEDName(), std::string("a\0b", 3));
}

TEST(kelDataEventTest, CloneCarriesEveryFieldAndTheSpecificPropertiesButNotTheMap)
{
    kelDataEvent event;
    fill(event);
    event.addSpecificProperty("k", 7);
    QVariantMap map{{"recorded", 1}};
    event.setMap(map);
    MessageCapture messages;
    const std::unique_ptr<kelDataEvent> copy(event.clone());
    expectFilled(*copy);
    EXPECT_EQ(copy->getSpecificProperties(), (QVariantMap{{"k", 7}}));
    EXPECT_TRUE(copy->getMap().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataEventTest, ACopyIsIndependentOfItsSourceAndHasItsParent)
{
    QObject parent;
    auto *event = new kelDataEvent;
    event->setParent(&parent);
    fill(*event);
    auto *copy = new kelDataEvent(*event);
    EXPECT_EQ(copy->parent(), &parent);
    event->setSEDName("other");
    expectFilled(*copy);
}

TEST(kelDataEventTest, AssignmentCarriesEveryFieldAndNeitherMap)
{
    kelDataEvent from;
    fill(from);
    from.addSpecificProperty("k", 7);
    QVariantMap map{{"recorded", 1}};
    from.setMap(map);
    kelDataEvent to;
    to.addSpecificProperty("own", 1);
    MessageCapture messages;
    kelDataEvent &result = (to = from);
    EXPECT_EQ(&result, &to);
    expectFilled(to);
    EXPECT_EQ(to.getSpecificProperties(), (QVariantMap{{"own", 1}}));
    EXPECT_TRUE(to.getMap().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataEventTest, AssignmentThroughTheBaseIsVirtual)
{
    kelDataEvent from;
    fill(from);
    kelDataEvent to;
    static_cast<kelAbstractData &>(to) = from;
    expectFilled(to);
}

TEST(kelDataEventTest, SelfAssignmentLosesNothing)
{
    kelDataEvent event;
    fill(event);
    const kelDataEvent &same = event;
    event = same;
    expectFilled(event);
}

TEST(kelDataEventTest, AssigningABlobWarnsTwiceAndChangesNothing)
{
    kelDataEvent event;
    fill(event);
    const kelDataBlob blob;
    MessageCapture messages;
    static_cast<kelAbstractData &>(event) = blob;
    EXPECT_EQ(messages.lines(), (QStringList{slicingWarning(), slicingWarning()}));
    expectFilled(event);
}
