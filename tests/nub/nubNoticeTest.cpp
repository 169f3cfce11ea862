#include <nubCore/nubNotice.h>

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include "support/Capture.h"

namespace {

/// A foreign class that reuses the blob's identifier.
class Impostor : public nubAbstractObject
{
public:
    QString identifier() const override { return "kelDataBlob"; }
};

} // namespace

TEST(nubNoticeTest, TheDefaultNoticeNamesTheOperationAndTheMostDerivedClass)
{
    const kelDataBlob blob;
    const LogLevel level(1);
    MessageCapture messages;
    nub::defaultNotice(&blob, "virtual bool some::operation()");
    EXPECT_EQ(messages.lines(),
              QStringList{"Using default implementation of virtual bool some::operation() for kelDataBlob"});
}

TEST(nubNoticeTest, TheDefaultNoticeIsOfLevelOne)
{
    const kelDataBlob blob;
    const LogLevel level(2);
    MessageCapture messages;
    nub::defaultNotice(&blob, "virtual bool some::operation()");
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubNoticeTest, ADefaultBodyGivesAnEmptyResultAndOneNotice)
{
    const kelDataBlob blob;
    const LogLevel level(0);
    MessageCapture messages;
    EXPECT_FALSE(nub::defaultBody<bool>(&blob, "a"));
    EXPECT_EQ(nub::defaultBody<int>(&blob, "b"), 0);
    EXPECT_TRUE(nub::defaultBody<QString>(&blob, "c").isNull());
    EXPECT_EQ(nub::defaultBody<void *>(&blob, "d"), nullptr);
    nub::defaultBody(&blob, "e");
    EXPECT_EQ(messages.lines(),
              (QStringList{defaultNotice("a", "kelDataBlob"), defaultNotice("b", "kelDataBlob"),
                           defaultNotice("c", "kelDataBlob"), defaultNotice("d", "kelDataBlob"),
                           defaultNotice("e", "kelDataBlob")}));
}

TEST(nubNoticeTest, TheSlicingWarningIsOfLevel17)
{
    MessageCapture messages;
    {
        const LogLevel level(18);
        nub::warnSlicing();
        EXPECT_TRUE(messages.lines().isEmpty());
    }
    const LogLevel level(17);
    nub::warnSlicing();
    EXPECT_EQ(messages.lines(), QStringList{"Other is not of same type than this, slicing is occuring."});
}

TEST(nubNoticeTest, ObjectsOfEqualIdentifierAreOfTheSameKind)
{
    const kelDataBlob blob;
    const kelDataBlob other;
    MessageCapture messages;
    EXPECT_EQ(nub::sameKind<kelDataBlob>(blob, other), &other);
    EXPECT_EQ(nub::sameKindOrWarn<kelDataBlob>(blob, other), &other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubNoticeTest, ObjectsOfDifferentIdentifierAreNot)
{
    const kelDataBlob blob;
    const kelDataImage image;
    MessageCapture messages;
    EXPECT_EQ(nub::sameKind<kelDataBlob>(blob, image), nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(nub::sameKindOrWarn<kelDataBlob>(blob, image), nullptr);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
}

TEST(nubNoticeTest, AForeignClassThatReusesAnIdentifierIsNotOfTheSameKind)
{
    const kelDataBlob blob;
    const Impostor impostor;
    EXPECT_EQ(nub::sameKind<kelDataBlob>(blob, impostor), nullptr);
}

TEST(nubNoticeTest, AClassWhoseBaseHasWarnedWarnsOfForeignClassesAlone)
{
    const kelDataBlob blob;
    const kelDataBlob other;
    MessageCapture messages;
    EXPECT_EQ(nub::sameKindOrWarnOfForeign<kelDataBlob>(blob, other), &other);
    EXPECT_EQ(nub::sameKindOrWarnOfForeign<kelDataBlob>(blob, kelDataImage()), nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(nub::sameKindOrWarnOfForeign<kelDataBlob>(blob, Impostor()), nullptr);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
}

TEST(nubNoticeTest, DifferentIdentifiersAreWarnedOf)
{
    const kelDataBlob blob;
    MessageCapture messages;
    EXPECT_TRUE(nub::sameIdentifierOrWarn(blob, kelDataBlob()));
    EXPECT_TRUE(nub::sameIdentifierOrWarn(blob, Impostor()));
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_FALSE(nub::sameIdentifierOrWarn(blob, kelDataImage()));
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
}
