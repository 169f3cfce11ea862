#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataContext_p.h>

#include "support/Capture.h"
#include "support/FlushCounter.h"
#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>
#include <opencv2/core/persistence.hpp>

#include <memory>
#include <type_traits>

namespace {

using Points = std::list<cv::Point3d>;

class kelDataContextFileTest : public TemporaryFolder
{
protected:
    /// The only element of a file in which `keys` stand between the braces of its map.
    static ContextElement single(const QByteArray &keys)
    {
        write("single.yml", "%YAML:1.0\n---\ncontextList:\n   - {" + keys + "}\n");
        kelDataContext context;
        EXPECT_TRUE(context.read("single.yml"));
        const auto elements = context.getContext();
        EXPECT_EQ(elements.size(), 1u);
        return elements.empty() ? ContextElement() : elements.front();
    }
    static void expectNoGeometry(const ContextElement &element)
    {
        EXPECT_EQ(element.radius, 0);
        EXPECT_EQ(element.center, cv::Point3d(0, 0, 0));
        EXPECT_TRUE(element.polygonVertices.empty());
        EXPECT_EQ(element.polygonIsClosed, 0);
        EXPECT_TRUE(element.cubeVertices.empty());
        EXPECT_EQ(element.cubeIsClosed, 0);
    }
    static void writeNames(const QString &file, const QList<QByteArray> &names)
    {
        QByteArray text = "%YAML:1.0\n---\ncontextList:\n";
        for (const QByteArray &name : names)
            text += "   - { semantic: zone, shape: polygon, height: 1, name: " + name + " }\n";
        write(file, text);
    }
    static QStringList names(const kelDataContext &context)
    {
        QStringList names;
        for (const ContextElement &element : context.getContext())
            names.append(QString::fromStdString(element.name));
        return names;
    }
};

const char geometryKeys[] = ", height: 1.5, name: n, isClosed: 1, radius: 2.5, "
                            "points: [ {x: 1, y: 2, z: 3}, {x: 4., y: 5., z: 6.}, {x: -7, y: 8.5, z: 9} ] ";
const Points geometryPoints{cv::Point3d(1, 2, 3), cv::Point3d(4, 5, 6), cv::Point3d(-7, 8.5, 9)};

/// A context of another kind, as its identifier says.
class OtherContext : public kelDataContext
{
public:
    QString identifier() const override { return "OtherContext"; }
};

/// Reuses the identifier without being a context.
class Impostor : public kelDataBlob
{
public:
    QString identifier() const override { return "kelDataContext"; }
};

} // namespace

TEST(kelDataContextTest, AFreshContextIsEmpty)
{
    const kelDataContext context;
    EXPECT_EQ(context.parent(), nullptr);
    EXPECT_EQ(context.identifier(), "kelDataContext");
    EXPECT_STREQ(context.metaObject()->className(), "kelDataContext");
    EXPECT_STREQ(context.metaObject()->superClass()->className(), "kelAbstractData");
    EXPECT_TRUE(context.getContext().empty());
    EXPECT_EQ(context.getReferentialName(), "Default");
    EXPECT_EQ(sizeof(kelDataContext), sizeof(nubAbstractObject));
    static_assert(std::is_same<decltype(context.getContext()), std::list<ContextElement>>::value, "");
    static_assert(std::is_same<decltype(context.getReferentialName()), std::string>::value, "");
}

TEST_F(kelDataContextFileTest, AMissingFileIsReportedWithoutItsNameAndChangesNothing)
{
    writeNames("one.yml", {"one"});
    kelDataContext context;
    ASSERT_TRUE(context.read("one.yml"));
    OutputCapture output;
    testing::internal::CaptureStderr(); // the storage reports for itself
    EXPECT_FALSE(context.read("missing.yml"));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(output.take(), "Error Opening the file.\n");
    EXPECT_EQ(names(context), QStringList{"one"});
}

TEST_F(kelDataContextFileTest, ReadingPrintsAndLogsNothing)
{
    writeNames("one.yml", {"one"});
    kelDataContext context;
    const LogLevel level(0);
    MessageCapture messages;
    OutputCapture output;
    EXPECT_TRUE(context.read("one.yml"));
    EXPECT_EQ(output.take(), "");
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelDataContextFileTest, AFileWithoutElementsChangesNothing)
{
    writeNames("one.yml", {"one"});
    kelDataContext context;
    ASSERT_TRUE(context.read("one.yml"));
    const QByteArray head = "%YAML:1.0\n---\n";
    for (const QByteArray rest : {"other: 5\n", "contextList: []\n", "contextList: {}\n"}) {
        write("none.yml", head + rest);
        EXPECT_TRUE(context.read("none.yml")) << rest.constData();
        EXPECT_EQ(names(context), QStringList{"one"});
    }
    write("none.xml",
          "<?xml version=\"1.0\"?>\n<opencv_storage><contextList></contextList></opencv_storage>\n");
    EXPECT_TRUE(context.read("none.xml"));
    EXPECT_EQ(names(context), QStringList{"one"});
}

TEST_F(kelDataContextFileTest, ReadingAccumulatesInFileOrder)
{
    writeNames("first.yml", {"a", "b"});
    writeNames("second.yml", {"c", "d"});
    kelDataContext context;
    EXPECT_TRUE(context.read("first.yml"));
    EXPECT_TRUE(context.read("second.yml"));
    EXPECT_EQ(names(context), (QStringList{"a", "b", "c", "d"}));
    EXPECT_TRUE(context.read("first.yml"));
    EXPECT_EQ(names(context), (QStringList{"a", "b", "c", "d", "a", "b"}));
}

TEST_F(kelDataContextFileTest, FilesMayBeXmlOrCompressedAndHoldOtherKeys)
{
    for (const char *file :
         {"context.xml", "context.yml", "context.json", "context.yml.gz", "context.xml.gz"}) {
        cv::FileStorage storage(file, cv::FileStorage::WRITE);
        ASSERT_TRUE(storage.isOpened());
        storage << "unit"
                << "mm"
                << "contextList"
                << "[";
        storage << "{"
                << "name"
                << "door"
                << "colour"
                << "red"
                << "shape"
                << "polygon"
                << "semantic"
                << "wall"
                << "height" << 2.5 << "isClosed" << 0 << "points"
                << "[";
        for (const cv::Point3d &p : geometryPoints)
            storage << "{"
                    << "z" << p.z << "w" << 1 << "x" << p.x << "y" << p.y << "}";
        storage << "]"
                << "}"
                << "]"
                << "referentialName"
                << "hall";
        storage.release();

        kelDataContext context;
        EXPECT_TRUE(context.read(file)) << file;
        const auto elements = context.getContext();
        ASSERT_EQ(elements.size(), 1u) << file;
        EXPECT_EQ(elements.front().semantic, "wall");
        EXPECT_EQ(elements.front().name, "door");
        EXPECT_EQ(elements.front().height, 2.5);
        EXPECT_EQ(elements.front().shape, "polygon");
        EXPECT_EQ(elements.front().polygonVertices, geometryPoints);
        EXPECT_EQ(elements.front().polygonIsClosed, 0);
        EXPECT_EQ(context.getReferentialName(), "Default");
    }
}

TEST_F(kelDataContextFileTest, PolygonsOfAllSemanticsTakeVerticesAndTheFlag)
{
    for (const QByteArray semantic : {"zone", "object", "wall"}) {
        ContextElement element = single("semantic: " + semantic + ", shape: polygon" + geometryKeys);
        EXPECT_EQ(element.semantic, semantic.toStdString());
        EXPECT_EQ(element.shape, "polygon");
        EXPECT_EQ(element.height, 1.5);
        EXPECT_EQ(element.name, "n");
        EXPECT_EQ(element.polygonVertices, geometryPoints);
        EXPECT_EQ(element.polygonIsClosed, 1);
        element.polygonVertices.clear();
        element.polygonIsClosed = 0;
        expectNoGeometry(element);
    }
}

TEST_F(kelDataContextFileTest, CirclesOfZonesAndObjectsTakeTheLastPointAndTheRadius)
{
    for (const QByteArray semantic : {"zone", "object"}) {
        ContextElement element = single("semantic: " + semantic + ", shape: circle" + geometryKeys);
        EXPECT_EQ(element.center, cv::Point3d(-7, 8.5, 9));
        EXPECT_EQ(element.radius, 2.5);
        element.center = cv::Point3d();
        element.radius = 0;
        expectNoGeometry(element);

        element = single("semantic: " + semantic + ", shape: circle, radius: 3");
        EXPECT_EQ(element.center, cv::Point3d(0, 0, 0));
        EXPECT_EQ(element.radius, 3);
    }
}

TEST_F(kelDataContextFileTest, CubesOfObjectsTakeVerticesAndTheFlag)
{
    ContextElement element = single(QByteArray("semantic: object, shape: cube") + geometryKeys);
    EXPECT_EQ(element.cubeVertices, geometryPoints);
    EXPECT_EQ(element.cubeIsClosed, 1);
    element.cubeVertices.clear();
    element.cubeIsClosed = 0;
    expectNoGeometry(element);
}

TEST_F(kelDataContextFileTest, OtherPairsAreKeptWithoutGeometry)
{
    const QList<QPair<QByteArray, QByteArray>> pairs{
        {"wall", "circle"},  {"wall", "cube"},   {"zone", "cube"},   {"roof", "polygon"}, {"zone", "square"},
        {"Zone", "polygon"}, {"zone", "Circle"}, {"object", "ball"}, {"zones", "polygon"}};
    for (const auto &pair : pairs) {
        const ContextElement element =
            single("semantic: " + pair.first + ", shape: " + pair.second + geometryKeys);
        EXPECT_EQ(element.semantic, pair.first.toStdString());
        EXPECT_EQ(element.shape, pair.second.toStdString());
        EXPECT_EQ(element.name, "n");
        EXPECT_EQ(element.height, 1.5);
        expectNoGeometry(element);
    }
}

TEST_F(kelDataContextFileTest, WhatIsMissingIsEmptyOrZero)
{
    ContextElement element = single(" other: 1 ");
    EXPECT_EQ(element.semantic, "");
    EXPECT_EQ(element.shape, "");
    EXPECT_EQ(element.name, "");
    EXPECT_EQ(element.height, 0);
    expectNoGeometry(element);

    expectNoGeometry(single("semantic: zone, shape: polygon"));
    expectNoGeometry(single("semantic: zone, shape: circle"));
    expectNoGeometry(single("semantic: object, shape: cube"));

    element = single("semantic: zone, shape: polygon, points: [ {x: 1, y: 2}, {z: 3}, {w: 4} ]");
    EXPECT_EQ(element.polygonVertices, (Points{{1, 2, 0}, {0, 0, 3}, {0, 0, 0}}));
}

TEST_F(kelDataContextFileTest, TextsThatAreNoTextsAreEmpty)
{
    const ContextElement element = single("semantic: 5, shape: 2.5, name: [ a, b ]");
    EXPECT_EQ(element.semantic, "");
    EXPECT_EQ(element.shape, "");
    EXPECT_EQ(element.name, "");
    EXPECT_EQ(single("name: \"12\"").name, "12");
    EXPECT_EQ(single("name: \"a, b c\"").name, "a, b c");
}

TEST_F(kelDataContextFileTest, NumbersThatAreNoNumbersAreHuge)
{
    for (const QByteArray text : {"tall", "\"2\"", "true", "[ 1 ]", "{ a: 1 }"}) {
        EXPECT_EQ(single("height: " + text).height, 1e300) << text.constData();
        EXPECT_EQ(single("semantic: zone, shape: circle, radius: " + text).radius, 1e300) << text.constData();
        EXPECT_EQ(single("semantic: zone, shape: polygon, points: [ { y: " + text + " } ]").polygonVertices,
                  (Points{{0, 1e300, 0}}));
        EXPECT_EQ(single("semantic: wall, shape: polygon, isClosed: " + text).polygonIsClosed, 2147483647)
            << text.constData();
        EXPECT_EQ(single("semantic: object, shape: cube, isClosed: " + text).cubeIsClosed, 2147483647)
            << text.constData();
    }
}

TEST_F(kelDataContextFileTest, ANodeThatHoldsNothingIsNoNumber)
{
    write("empty.xml",
          "<?xml version=\"1.0\"?>\n<opencv_storage><contextList><_><semantic>zone</semantic>"
          "<shape>polygon</shape><name></name><height></height><isClosed></isClosed></_>"
          "</contextList></opencv_storage>\n");
    kelDataContext context;
    ASSERT_TRUE(context.read("empty.xml"));
    const ContextElement element = context.getContext().front();
    EXPECT_EQ(element.name, "");
    EXPECT_EQ(element.height, 1e300);
    EXPECT_EQ(element.polygonIsClosed, 2147483647);
}

TEST_F(kelDataContextFileTest, AMapWithoutKeysIsKeptInEveryFormat)
{
    for (const char *file : {"empty.yml", "empty.xml", "empty.json"}) {
        {
            cv::FileStorage storage(file, cv::FileStorage::WRITE);
            storage << "contextList"
                    << "["
                    << "{"
                    << "}"
                    << "{"
                    << "semantic"
                    << "zone"
                    << "shape"
                    << "polygon"
                    << "points"
                    << "["
                    << "{"
                    << "}"
                    << "]"
                    << "}"
                    << "]";
        }
        kelDataContext context;
        EXPECT_TRUE(context.read(file)) << file;
        const auto elements = context.getContext();
        ASSERT_EQ(elements.size(), 2u) << file;
        EXPECT_EQ(elements.front().semantic + elements.front().shape + elements.front().name, "");
        EXPECT_EQ(elements.front().height, 0);
        expectNoGeometry(elements.front());
        EXPECT_EQ(elements.back().polygonVertices, Points(1));
    }
}

TEST_F(kelDataContextFileTest, IntegersBecomeDoublesAndRealsAreRoundedToNearest)
{
    EXPECT_EQ(single("height: 3").height, 3.0);
    EXPECT_EQ(single("semantic: zone, shape: polygon, isClosed: 2.6").polygonIsClosed, 3);
    EXPECT_EQ(single("semantic: zone, shape: polygon, isClosed: 2.4").polygonIsClosed, 2);
    EXPECT_EQ(single("semantic: zone, shape: polygon, isClosed: -2.6").polygonIsClosed, -3);
    EXPECT_EQ(single("semantic: object, shape: cube, isClosed: 0.4").cubeIsClosed, 0);
    EXPECT_EQ(single("semantic: object, shape: cube, isClosed: -4").cubeIsClosed, -4);
}

TEST_F(kelDataContextFileTest, AFileThatThrowsHalfWayLeavesTheObjectAsItWas)
{
    writeNames("one.yml", {"one"});
    kelDataContext context;
    ASSERT_TRUE(context.read("one.yml"));
    const QByteArray head = "%YAML:1.0\n---\ncontextList:\n   - { name: two }\n";
    for (const QByteArray rest : {"   - 5\n", "   - three\n", "   - [ { name: three } ]\n",
                                  "   - { semantic: zone, shape: polygon, points: [ 1, 2, 3 ] }\n",
                                  "   - { semantic: zone, shape: circle, points: 7 }\n",
                                  "   - { name: \"three }\n", "   - { name: three"}) {
        write("bad.yml", head + rest);
        EXPECT_THROW(context.read("bad.yml"), cv::Exception) << rest.constData();
        EXPECT_EQ(names(context), QStringList{"one"});
    }
    write("bad.yml", "%YAML:1.0\n---\ncontextList: 5\n");
    EXPECT_THROW(context.read("bad.yml"), cv::Exception);
    write("bad.yml", "");
    EXPECT_THROW(context.read("bad.yml"), cv::Exception);
    write("bad.yml", "no storage at all");
    EXPECT_THROW(context.read("bad.yml"), cv::Exception);
    EXPECT_EQ(names(context), QStringList{"one"});
}

TEST_F(kelDataContextFileTest, FileNamesMayHoldAnyCharacters)
{
    const QString name = QString::fromUtf8("sc\xc3\xa8ne \xe4\xb8\x96.yml");
    writeNames(name, {"one"});
    kelDataContext context;
    EXPECT_TRUE(context.read(name));
    EXPECT_EQ(names(context), QStringList{"one"});
}

TEST_F(kelDataContextFileTest, GetContextHandsOutACopy)
{
    writeNames("one.yml", {"one"});
    kelDataContext context;
    ASSERT_TRUE(context.read("one.yml"));
    auto elements = context.getContext();
    elements.front().name = "changed";
    elements.clear();
    EXPECT_EQ(names(context), QStringList{"one"});
    EXPECT_EQ(&kelDataContextPrivate::elementsOf(context), &kelDataContextPrivate::elementsOf(context));
    EXPECT_EQ(kelDataContextPrivate::elementsOf(context).size(), 1u);
}

TEST_F(kelDataContextFileTest, CopiesDuplicateTheElements)
{
    writeNames("one.yml", {"one"});
    writeNames("two.yml", {"two"});
    kelDataContext context;
    ASSERT_TRUE(context.read("one.yml"));
    context.addSpecificProperty("k", 7);
    QVariantMap map{{"m", 1}};
    context.setMap(map);

    const kelDataContext copy(context);
    const std::unique_ptr<kelDataContext> clone(context.clone());
    ASSERT_TRUE(context.read("two.yml"));
    for (const kelDataContext *object : {&copy, static_cast<const kelDataContext *>(clone.get())}) {
        EXPECT_EQ(names(*object), QStringList{"one"});
        EXPECT_EQ(object->getReferentialName(), "Default");
        EXPECT_EQ(object->getSpecificProperties().value("k"), 7);
        EXPECT_TRUE(const_cast<kelDataContext *>(object)->getMap().isEmpty());
    }
}

TEST_F(kelDataContextFileTest, AssignmentReplacesTheElements)
{
    writeNames("one.yml", {"one"});
    writeNames("two.yml", {"two", "three"});
    kelDataContext from;
    kelDataContext to;
    ASSERT_TRUE(from.read("one.yml"));
    ASSERT_TRUE(to.read("two.yml"));
    from.addSpecificProperty("k", 7);
    MessageCapture messages;
    EXPECT_EQ(&(to = from), &to);
    EXPECT_EQ(names(to), QStringList{"one"});
    EXPECT_TRUE(to.getSpecificProperties().isEmpty());

    kelDataContext &same = to;
    to = same;
    EXPECT_EQ(names(to), QStringList{"one"});
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST_F(kelDataContextFileTest, CopyTakesTheReferentialNameToo)
{
    /// Sets the name that no operation of the library sets.
    class Named : public kelDataContext
    {
    public:
        explicit Named(const char *name)
        {
            static_cast<kelDataContextPrivate *>(nub_d.data())->referentialName = name;
        }
    };
    const Named hall("hall");
    kelDataContext context;
    context = hall;
    EXPECT_EQ(context.getReferentialName(), "hall");
    EXPECT_EQ(kelDataContext(hall).getReferentialName(), "hall");
    ASSERT_NO_FATAL_FAILURE(writeNames("one.yml", {"one"}));
    EXPECT_TRUE(context.read("one.yml"));
    EXPECT_EQ(context.getReferentialName(), "hall");
}

TEST_F(kelDataContextFileTest, CopyFromAnotherKindWarnsOnceAndKeepsEverything)
{
    writeNames("one.yml", {"one"});
    kelDataContext context;
    ASSERT_TRUE(context.read("one.yml"));
    MessageCapture messages;
    context.copy(kelDataBlob());
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});
    context = OtherContext();
    EXPECT_EQ(messages.take(), QStringList{slicingWarning()});
    context.copy(Impostor());
    EXPECT_EQ(names(context), QStringList{"one"});
    messages.take();
    const LogLevel level(18);
    context.copy(kelDataBlob());
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(names(context), QStringList{"one"});
}

TEST_F(kelDataContextFileTest, TheReportOfAMissingFileIsFlushed)
{
    FlushCounter output;
    kelDataContext().read(QString("missing.yml"));
    EXPECT_EQ(output.flushed(), std::vector<std::string>{"Error Opening the file.\n"});
}
