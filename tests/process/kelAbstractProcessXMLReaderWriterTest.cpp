#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h>
#include <kelCore/process/kelAbstractProcessXMLReaderWriter_p.h>

#include "support/Capture.h"
#include "support/Stage.h"
#include "support/TemporaryFolder.h"

#include <cstdio>
#include <fstream>
#include <type_traits>

namespace {

/// Makes one object or actor of each element of that name, and writes the numbers of both.
class XMLReaderWriter
    : public Opened<kelAbstractProcessXMLReaderWriter, kelAbstractProcessXMLReaderWriterPrivate>
{
public:
    bool parsePhysicalObjects() override { return parse("object", d().physicalObjects); }
    bool parseActors() override { return parse("actor", d().actors); }
    bool writePhysicalObjects() override { return append("objects", d().physicalObjects.size()); }
    bool writeActors() override { return append("actors", d().actors.size()); }

private:
    template <class List> bool parse(const char *name, List &list)
    {
        list.clear();
        const int count = d().document.elementsByTagName(name).count();
        for (int i = 0; i < count; ++i)
            list.append(typename List::value_type(new typename List::value_type::value_type));
        return !d().document.isNull();
    }
    bool append(const char *name, int count)
    {
        std::ofstream file(d().outputXML, std::ios::app);
        file << "<" << name << " count=\"" << count << "\"/>";
        return file.good();
    }
};

class kelAbstractProcessXMLReaderWriterTest : public TemporaryFolder
{
protected:
    void writeScene(const QString &name)
    {
        write(name, "<?xml version=\"1.0\"?>\n<scene><object/><object/><actor/></scene>\n");
    }

    XMLReaderWriter stage;
};

} // namespace

TEST_F(kelAbstractProcessXMLReaderWriterTest, PlugInsMustSupplyParsingAndWriting)
{
    EXPECT_TRUE(std::is_abstract<kelAbstractProcessXMLReaderWriter>::value);
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, AFreshStageHoldsNothing)
{
    EXPECT_TRUE(stage.d().document.isNull());
    EXPECT_EQ(stage.d().outputXML, "");
    EXPECT_TRUE(stage.getPhysicalObjectList().isEmpty());
    EXPECT_TRUE(stage.getActorList().isEmpty());
    expectFreshBase<XMLReaderWriter>();
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, TheMembersStandInTheirOrder)
{
    auto &d = stage.d();
    const auto place = [&d](const auto &member) {
        return reinterpret_cast<const char *>(&member) - reinterpret_cast<const char *>(&d);
    };
    EXPECT_LT(place(d.document), place(d.outputXML));
    EXPECT_LT(place(d.outputXML), place(d.physicalObjects));
    EXPECT_LT(place(d.physicalObjects), place(d.actors));
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, SetInputLoadsTheDocument)
{
    const LogLevel level(0);
    MessageCapture messages;
    writeScene("scene.xml");
    stage.setInputXML("scene.xml");
    EXPECT_EQ(stage.d().document.documentElement().tagName(), "scene");
    EXPECT_EQ(stage.d().document.documentElement().childNodes().count(), 3);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, SetInputParsesNothingByItself)
{
    writeScene("scene.xml");
    stage.setInputXML("scene.xml");
    EXPECT_TRUE(stage.getPhysicalObjectList().isEmpty());
    EXPECT_TRUE(stage.getActorList().isEmpty());
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, APathMayHoldAnyLetters)
{
    const QString name = QString::fromUtf8("sc\xc3\xa8ne \xe2\x82\xac.xml");
    writeScene(name);
    stage.setInputXML(QFile::encodeName(name).toStdString());
    EXPECT_EQ(stage.d().document.documentElement().tagName(), "scene");
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, WhatCannotBeLoadedLeavesAnEmptyDocumentSilently)
{
    const LogLevel level(0);
    MessageCapture messages;
    write("half.xml", "<scene><object/></wrong>");
    write("cut.xml", "<scene><object/>");
    write("text.xml", "no markup");
    write("empty.xml", "");
    writeScene("scene.xml");
    for (const char *path :
         {"missing.xml", "nowhere/missing.xml", "", ".", "half.xml", "cut.xml", "text.xml", "empty.xml"}) {
        stage.setInputXML("scene.xml");
        ASSERT_FALSE(stage.d().document.isNull());
        stage.setInputXML(path);
        EXPECT_TRUE(stage.d().document.isNull()) << '"' << path << '"';
        EXPECT_FALSE(stage.d().document.hasChildNodes()) << '"' << path << '"';
    }
    EXPECT_TRUE(messages.lines().isEmpty()) << messages.lines().join('\n').toStdString();
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, AFileIsClosedAfterLoading)
{
    writeScene("scene.xml");
    const auto openFiles = [] {
        return QDir("/proc/self/fd").entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size();
    };
    const auto before = openFiles();
    stage.setInputXML("scene.xml");
    EXPECT_EQ(openFiles(), before);
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, SetOutputKeepsThePathAndWritesNothing)
{
    stage.setOutputXML("out.xml");
    EXPECT_EQ(stage.d().outputXML, "out.xml");
    EXPECT_FALSE(QFile::exists("out.xml"));
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, PlugInsParseTheDocumentAndWriteTheOutput)
{
    kelAbstractProcessXMLReaderWriter &base = stage;
    EXPECT_FALSE(base.parseActors());
    writeScene("scene.xml");
    base.setInputXML("scene.xml");
    EXPECT_TRUE(base.parsePhysicalObjects());
    EXPECT_TRUE(base.parseActors());
    EXPECT_EQ(base.getPhysicalObjectList(), stage.d().physicalObjects);
    EXPECT_EQ(base.getPhysicalObjectList().size(), 2);
    EXPECT_EQ(base.getActorList(), stage.d().actors);
    EXPECT_EQ(base.getActorList().size(), 1);
    base.setOutputXML("out.xml");
    EXPECT_TRUE(base.writePhysicalObjects());
    EXPECT_TRUE(base.writeActors());
    EXPECT_EQ(content("out.xml"), "<objects count=\"2\"/><actors count=\"1\"/>");
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, TheListsAreCopies)
{
    stage.d().physicalObjects.append(QSharedPointer<kelDataPhysicalObject>(new kelDataPhysicalObject));
    stage.d().actors.append(QSharedPointer<kelDataActor>(new kelDataActor));
    stage.getPhysicalObjectList().clear();
    stage.getActorList().clear();
    EXPECT_EQ(stage.getPhysicalObjectList().size(), 1);
    EXPECT_EQ(stage.getActorList().size(), 1);
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, ACopyRefersToTheSameDocumentAndHasNoLists)
{
    writeScene("scene.xml");
    stage.setInputXML("scene.xml");
    stage.setOutputXML("out.xml");
    stage.parsePhysicalObjects();
    stage.parseActors();
    XMLReaderWriter copy(stage);
    EXPECT_EQ(copy.d().document, stage.d().document);
    copy.d().document.documentElement().setAttribute("seen", 1);
    EXPECT_EQ(stage.d().document.documentElement().attribute("seen"), "1");
    EXPECT_EQ(copy.d().outputXML, "out.xml");
    EXPECT_TRUE(copy.getPhysicalObjectList().isEmpty());
    EXPECT_TRUE(copy.getActorList().isEmpty());
    EXPECT_EQ(stage.getPhysicalObjectList().size(), 2);
    EXPECT_EQ(stage.getActorList().size(), 1);

    stage.setInputXML("missing.xml");
    EXPECT_EQ(copy.d().document.documentElement().tagName(), "scene");
    expectCopiedBase<XMLReaderWriter>();
}

TEST_F(kelAbstractProcessXMLReaderWriterTest, TheIdentifierIsTheFrameworks)
{
    EXPECT_EQ(stage.identifier(), "kelAbstractProcessXMLReaderWriter");
}
