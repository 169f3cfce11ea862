#include <kelCore/data/kelAbstractData_p.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include "support/Capture.h"

#include <memory>

namespace {

/// The base class as it is, with a clone so that it can be created.
class Data : public kelAbstractData
{
public:
    Data *clone() override { return new Data(*this); }

    kelAbstractDataPrivate &state() { return static_cast<kelAbstractDataPrivate &>(*nub_d); }
};

/// A blob whose framework part the tests can see.
class Blob : public kelDataBlob
{
public:
    nubAbstractDataPrivate &state() { return static_cast<nubAbstractDataPrivate &>(*nub_d); }
};

class Image : public kelDataImage
{
public:
    nubAbstractDataPrivate &state() { return static_cast<nubAbstractDataPrivate &>(*nub_d); }
};

const char readSignature[] = "virtual bool kelAbstractData::read(const QString&)";
const char writeSignature[] = "virtual bool kelAbstractData::write(const QString&)";
const char setSignature[] = "virtual bool kelAbstractData::setSpecificProperties(const QVariantMap&)";

const int levelsThatShowNotices[] = {0, 1};
const int levelsThatHideNotices[] = {2, 17, 256};

} // namespace

TEST(kelAbstractDataTest, AFreshObjectHasNoParentAndEmptyMaps)
{
    Data data;
    EXPECT_EQ(data.parent(), nullptr);
    EXPECT_TRUE(data.getSpecificProperties().isEmpty());
    EXPECT_TRUE(data.getMap().isEmpty());
    EXPECT_EQ(data.identifier(), "kelAbstractData");
    EXPECT_EQ(data.state().q_ptr, &data);
}

TEST(kelAbstractDataTest, AddingAPropertyTwiceReplacesItsValue)
{
    Data data;
    data.addSpecificProperty("k", 1);
    data.addSpecificProperty("other", "text");
    data.addSpecificProperty("k", 2);
    EXPECT_EQ(data.getSpecificProperties(), (QVariantMap{{"k", 2}, {"other", "text"}}));
}

TEST(kelAbstractDataTest, PropertiesAreKeptInTheOrderOfTheirKeys)
{
    Data data;
    for (const char *key : {"b", "a", "B", "aa"})
        data.addSpecificProperty(key, 1);
    EXPECT_EQ(data.getSpecificProperties().keys(), (QStringList{"B", "a", "aa", "b"}));
}

TEST(kelAbstractDataTest, TheSpecificPropertiesAreTheMapItself)
{
    Data data;
    const QVariantMap &properties = data.getSpecificProperties();
    data.addSpecificProperty("k", 1);
    EXPECT_EQ(properties.value("k"), 1);
    EXPECT_EQ(&properties, &data.getSpecificProperties());
}

TEST(kelAbstractDataTest, SettingSpecificPropertiesReplacesThemAll)
{
    Data data;
    data.addSpecificProperty("old", 1);
    data.addSpecificProperty("kept", 1);
    EXPECT_TRUE(data.setSpecificProperties(QVariantMap{{"new", 2}, {"kept", 3}}));
    EXPECT_EQ(data.getSpecificProperties(), (QVariantMap{{"new", 2}, {"kept", 3}}));
    EXPECT_TRUE(data.setSpecificProperties(data.getSpecificProperties()));
    EXPECT_EQ(data.getSpecificProperties(), (QVariantMap{{"new", 2}, {"kept", 3}}));
    EXPECT_TRUE(data.setSpecificProperties(QVariantMap()));
    EXPECT_TRUE(data.getSpecificProperties().isEmpty());
}

TEST(kelAbstractDataTest, SettingSpecificPropertiesLogsOneNoticeAtLevelOne)
{
    for (const int current : levelsThatShowNotices) {
        kelDataBlob blob;
        const LogLevel level(current);
        MessageCapture messages;
        EXPECT_TRUE(blob.setSpecificProperties(QVariantMap{{"k", 1}}));
        EXPECT_EQ(messages.lines(), QStringList{defaultNotice(setSignature, "kelDataBlob")});
        EXPECT_EQ(blob.getSpecificProperties(), (QVariantMap{{"k", 1}}));
    }
    for (const int current : levelsThatHideNotices) {
        kelDataBlob blob;
        const LogLevel level(current);
        MessageCapture messages;
        EXPECT_TRUE(blob.setSpecificProperties(QVariantMap{{"k", 1}}));
        EXPECT_TRUE(messages.lines().isEmpty()) << current;
        EXPECT_EQ(blob.getSpecificProperties(), (QVariantMap{{"k", 1}}));
    }
}

TEST(kelAbstractDataTest, ReadAndWriteReportThatTheyAreDefaultsAndFail)
{
    for (const int current : levelsThatShowNotices) {
        kelDataBlob blob;
        const LogLevel level(current);
        MessageCapture messages;
        EXPECT_FALSE(blob.read(QString("file")));
        EXPECT_EQ(messages.take(), QStringList{defaultNotice(readSignature, "kelDataBlob")});
        EXPECT_FALSE(blob.write(QString("file")));
        EXPECT_EQ(messages.take(), QStringList{defaultNotice(writeSignature, "kelDataBlob")});
    }
}

TEST(kelAbstractDataTest, ReadAndWriteFailSilentlyAboveLevelOne)
{
    for (const int current : levelsThatHideNotices) {
        kelDataBlob blob;
        const LogLevel level(current);
        MessageCapture messages;
        OutputCapture output;
        EXPECT_FALSE(blob.read(QString("file")));
        EXPECT_FALSE(blob.write(QString("file")));
        EXPECT_TRUE(messages.lines().isEmpty()) << current;
        EXPECT_EQ(output.take(), "");
    }
}

TEST(kelAbstractDataTest, ReadingAndWritingListsStayTheFrameworks)
{
    kelDataBlob blob;
    const LogLevel level(0);
    MessageCapture messages;
    EXPECT_FALSE(blob.read(QStringList{"file"}));
    EXPECT_FALSE(blob.write(QStringList{"file"}));
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelAbstractDataTest, TheNoticeNamesTheMetaObjectClassOfTheObject)
{
    Data data;
    const LogLevel level(1);
    MessageCapture messages;
    data.read(QString("file"));
    EXPECT_EQ(messages.lines(),
              QStringList{"Using default implementation of virtual bool kelAbstractData::read(const "
                          "QString&) for kelAbstractData"});
}

TEST(kelAbstractDataTest, TheMapIsReplacedWholeAndGivenAsACopy)
{
    Data data;
    QVariantMap map{{"a", 1}, {"b", 2}};
    EXPECT_TRUE(data.setMap(map));
    EXPECT_EQ(map.size(), 2);
    map.insert("c", 3);
    QVariantMap copy = data.getMap();
    EXPECT_EQ(copy, (QVariantMap{{"a", 1}, {"b", 2}}));
    copy.insert("d", 4);
    EXPECT_EQ(data.getMap().size(), 2);

    QVariantMap next{{"z", 1}};
    EXPECT_TRUE(data.setMap(next));
    EXPECT_EQ(data.getMap(), next);
    QVariantMap none;
    EXPECT_TRUE(data.setMap(none));
    EXPECT_TRUE(data.getMap().isEmpty());
}

TEST(kelAbstractDataTest, TheTwoMapsAreApart)
{
    Data data;
    data.addSpecificProperty("k", 1);
    EXPECT_TRUE(data.getMap().isEmpty());
    QVariantMap map{{"m", 2}};
    data.setMap(map);
    EXPECT_EQ(data.getSpecificProperties(), (QVariantMap{{"k", 1}}));
}

TEST(kelAbstractDataTest, ACopyCarriesTheSpecificPropertiesAndStartsWithAnEmptyMap)
{
    QObject parent;
    Data data;
    data.setParent(&parent);
    data.addSpecificProperty("k", 1);
    QVariantMap map{{"m", 2}};
    data.setMap(map);
    data.state().path = "path";
    data.state().properties = {{"p", "q"}};
    data.retain();

    const std::unique_ptr<Data> copy(data.clone());
    EXPECT_EQ(copy->getSpecificProperties(), (QVariantMap{{"k", 1}}));
    EXPECT_TRUE(copy->getMap().isEmpty());
    EXPECT_EQ(copy->state().path, "path");
    EXPECT_EQ(copy->state().properties.value("p"), "q");
    EXPECT_EQ(copy->state().q_ptr, copy.get());
    EXPECT_EQ(copy->state().retainCount, 0);
    EXPECT_EQ(copy->parent(), &parent);

    copy->addSpecificProperty("k", 9);
    EXPECT_EQ(data.getSpecificProperties().value("k"), 1);
    EXPECT_EQ(data.getMap(), map);
}

TEST(kelAbstractDataTest, CopyingTheSameKindIsSilentAndCarriesNeitherMap)
{
    Data from;
    from.addSpecificProperty("k", 1);
    QVariantMap fromMap{{"m", 1}};
    from.setMap(fromMap);
    from.state().path = "path";
    Data to;
    to.addSpecificProperty("own", 2);
    QVariantMap toMap{{"own", 3}};
    to.setMap(toMap);

    MessageCapture messages;
    to.copy(from);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(to.state().path, "path");
    EXPECT_EQ(to.getSpecificProperties(), (QVariantMap{{"own", 2}}));
    EXPECT_EQ(to.getMap(), toMap);
}

TEST(kelAbstractDataTest, CopyingAnUnlikeKindWarnsOnceAndCopiesTheFrameworksPart)
{
    Image image;
    image.addSpecificProperty("k", 1);
    QVariantMap imageMap{{"m", 1}};
    image.setMap(imageMap);
    image.state().path = "path";
    Blob blob;
    blob.addSpecificProperty("own", 2);
    QVariantMap blobMap{{"own", 3}};
    blob.setMap(blobMap);

    MessageCapture messages;
    blob.kelAbstractData::copy(image);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_EQ(blob.state().path, "path");
    EXPECT_EQ(blob.getSpecificProperties(), (QVariantMap{{"own", 2}}));
    EXPECT_EQ(blob.getMap(), blobMap);
}

TEST(kelAbstractDataTest, TheKindIsTheVirtualIdentifierOfBothSides)
{
    class Named : public Data
    {
    public:
        QString identifier() const override { return "kelDataBlob"; }
    };
    Named named;
    const kelDataBlob blob;
    MessageCapture messages;
    named.kelAbstractData::copy(blob);
    EXPECT_TRUE(messages.lines().isEmpty());
    named.kelAbstractData::copy(Data());
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
}

TEST(kelAbstractDataTest, TheSlicingWarningIsOfLevel17)
{
    Data data;
    const kelDataBlob blob;
    for (const int current : {0, 17, 18}) {
        const LogLevel level(current);
        MessageCapture messages;
        data.copy(blob);
        EXPECT_EQ(messages.count(slicingWarning()), current <= 17 ? 1 : 0) << current;
    }
}

TEST(kelAbstractDataTest, AssignmentCallsTheVirtualCopyAndReturnsTheObject)
{
    kelDataBlob blob;
    kelDataBlob other;
    other.setBoundingBox2D(cv::Rect(1, 2, 3, 4));
    kelAbstractData &base = blob;
    EXPECT_EQ(&(base = static_cast<const kelAbstractData &>(other)), &blob);
    EXPECT_EQ(blob.getBoundingBox2D(), cv::Rect(1, 2, 3, 4));
}
