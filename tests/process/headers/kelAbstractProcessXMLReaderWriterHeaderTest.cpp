#include <kelCore/process/kelAbstractProcessXMLReaderWriter.h> // alone

#include <gtest/gtest.h>

#include <QTemporaryFile>

namespace {

/// Objects and actors are the elements of these names.
class XMLReaderWriter : public kelAbstractProcessXMLReaderWriter
{
public:
    bool parsePhysicalObjects() override
    {
        QList<QSharedPointer<kelDataPhysicalObject>> objects;
        for (QDomElement e = root().firstChildElement("object"); !e.isNull();
             e = e.nextSiblingElement("object"))
            objects.append(QSharedPointer<kelDataPhysicalObject>(new kelDataPhysicalObject));
        setPhysicalObjectList(objects);
        return !root().isNull();
    }
    bool parseActors() override
    {
        QList<QSharedPointer<kelDataActor>> actors;
        for (QDomElement e = root().firstChildElement("actor"); !e.isNull();
             e = e.nextSiblingElement("actor")) {
            actors.append(QSharedPointer<kelDataActor>(new kelDataActor));
            actors.last()->setIdent(e.attribute("ident").toUInt());
        }
        setActorList(actors);
        return !root().isNull();
    }
    bool writePhysicalObjects() override { return !getOutputXML().empty(); }
    bool writeActors() override { return writePhysicalObjects(); }

private:
    QDomElement root() const { return getDocument().documentElement(); }
};

} // namespace

TEST(stageHeaderTest, XMLReaderWriterNeedsNoOther)
{
    XMLReaderWriter stage;
    EXPECT_FALSE(stage.parseActors());
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write("<scene><object/><actor ident='5'/><object/></scene>");
    file.close();
    stage.setInputXML(file.fileName().toStdString());
    EXPECT_TRUE(stage.parsePhysicalObjects());
    EXPECT_TRUE(stage.parseActors());
    EXPECT_EQ(stage.getPhysicalObjectList().size(), 2);
    ASSERT_EQ(stage.getActorList().size(), 1);
    EXPECT_EQ(stage.getActorList().first()->getIdent(), 5u);

    EXPECT_FALSE(stage.writeActors());
    stage.setOutputXML("scene.xml");
    EXPECT_TRUE(stage.writeActors());
}
