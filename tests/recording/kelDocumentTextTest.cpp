// The recording's document, written through the stage that records: what a foreign or difficult document
// becomes when a frame is added to it.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/process/kelAbstractProcessDataFlowWriter.h>

#include "support/Capture.h"
#include "support/TemporaryFolder.h"

#include <QDomDocument>
#include <QLocale>
#include <QMap>
#include <QRect>
#include <QRegularExpression>
#include <QSharedPointer>
#include <QXmlStreamReader>

#include <memory>

namespace {

using Data = QSharedPointer<kelAbstractData>;

Data blob(QVariantMap map)
{
    Data result(new kelDataBlob);
    result->setMap(map);
    return result;
}

/// The text with the attributes of every start tag in the order of the format: its own first, others by name.
QString ordered(const QString &xml)
{
    static const QStringList own{"frameNumber", "file",     "frameID", "timeYear", "timeMonth",
                                 "timeDay",     "timeHour", "timeMin", "timeSec",  "timeMs",
                                 "dataType",    "key",      "type",    "value"};
    // Whatever is no start tag is skipped: comments, character data, instructions, declarations.
    static const QRegularExpression parts(
        R"(<!--.*?-->|<!\[CDATA\[.*?\]\]>|<\?.*?\?>|<(?<name>[^\s<>/!?]+)(?<list>(\s[^\s=<>/]+="[^"]*")+))",
        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression attribute(R"(\s([^\s=<>/]+)="[^"]*")");
    QString result;
    int at = 0;
    for (auto it = parts.globalMatch(xml); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        if (match.captured("name").isEmpty())
            continue;
        QMap<QString, QString> attributes; // by rank and name
        for (auto each = attribute.globalMatch(match.captured("list")); each.hasNext();) {
            const QRegularExpressionMatch one = each.next();
            const int rank = static_cast<int>(own.indexOf(one.captured(1)));
            attributes.insert(QChar(rank < 0 ? 'z' : 'a' + rank) + one.captured(1), one.captured());
        }
        const int start = static_cast<int>(match.capturedStart("list"));
        result += xml.mid(at, start - at) + QStringList(attributes.values()).join(QString());
        at = static_cast<int>(match.capturedEnd("list"));
    }
    return result + xml.mid(at);
}

/// Whether the parsers that read recordings take the text.
bool everyParserTakes(const QByteArray &text)
{
    QXmlStreamReader strict(text);
    while (!strict.atEnd())
        strict.readNext();
    return !strict.hasError() && QDomDocument().setContent(text);
}

/// The text of all attributes and text nodes below an element, in document order.
QStringList texts(const QDomNode &node)
{
    QStringList result;
    const QDomNamedNodeMap attributes = node.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        result.append(attributes.item(i).nodeName() + '=' + attributes.item(i).nodeValue());
    result.sort();
    if (node.isCharacterData())
        result.append(node.nodeValue());
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        result += texts(child);
    return result;
}

} // namespace

class kelDocumentTextTest : public TemporaryFolder
{
protected:
    kelDocumentTextTest()
    {
        OutputCapture output;
        writer.reset(new kelAbstractProcessDataFlowWriter);
        writer->setFilePath(QFile("run.xml"));
    }

    /// The document after a frame was added to `foreign`.
    QByteArray rewritten(const QByteArray &foreign)
    {
        write("run.xml", foreign);
        MessageCapture messages;
        EXPECT_TRUE(writer->writeDataFlow()) << foreign.toStdString();
        EXPECT_EQ(messages.lines(), QStringList{"\n frame saved"});
        return content("run.xml");
    }

    /// The document of one frame with one blob of that map.
    QByteArray recorded(const QVariantMap &map)
    {
        QFile::remove("run.xml");
        MessageCapture messages;
        writer->setDataFlow(QList<Data>{blob(map)});
        EXPECT_TRUE(writer->writeDataFlow());
        return content("run.xml");
    }

    /// The document that the writer holds.
    QDomDocument document() { return writer->setTimeStampElement().ownerDocument(); }

    std::unique_ptr<kelAbstractProcessDataFlowWriter> writer;
    const QByteArray frame = " <Frame frameNumber=\"0\">\n"
                             "  <Parameters file=\"/myfile/param.txt\"/>\n"
                             "  <Synchronization frameID=\"0\" timeYear=\"0\" timeMonth=\"0\" timeDay=\"0\""
                             " timeHour=\"4294967295\" timeMin=\"4294967295\" timeSec=\"4294967295\""
                             " timeMs=\"4294967295\"/>\n"
                             " </Frame>\n";
};

TEST_F(kelDocumentTextTest, ANewDocumentIsItsRootAloneAndHasNoDocumentType)
{
    MessageCapture messages;
    writer->xmlGen();
    EXPECT_EQ(content("run.xml"), "<DataFlow/>\n");
}

TEST_F(kelDocumentTextTest, AttributesComeInTheOrderOfTheFormat)
{
    EXPECT_EQ(recorded({{"BoundingBox2D", QRect(10, 20, 30, 40)}, {"area", 7}}).toStdString(),
              "<DataFlow>\n"
              " <Frame frameNumber=\"0\">\n"
              "  <Parameters file=\"/myfile/param.txt\"/>\n"
              "  <Synchronization frameID=\"0\" timeYear=\"0\" timeMonth=\"0\" timeDay=\"0\""
              " timeHour=\"4294967295\" timeMin=\"4294967295\" timeSec=\"4294967295\""
              " timeMs=\"4294967295\"/>\n"
              "  <Data dataType=\"kelDataBlob\">\n"
              "   <entry key=\"BoundingBox2D\" type=\"QRect\" value=\"10 20 30 40\"/>\n"
              "   <entry key=\"area\" type=\"int\" value=\"\"/>\n"
              "  </Data>\n"
              " </Frame>\n"
              "</DataFlow>\n");
}

TEST_F(kelDocumentTextTest, UnknownAttributesFollowTheKnownOnesByName)
{
    const QByteArray all =
        "<DataFlow zeta='z' value='13' type='12' key='11' dataType='10' timeMs='9' timeSec='8'"
        " b:c='c' timeMin='7' timeHour='6' timeDay='5' timeMonth='4' timeYear='3' A='A'"
        " frameID='2' file='1' frameNumber='0' keys='k' alpha='a'/>";
    EXPECT_EQ(
        rewritten(all).toStdString(),
        "<DataFlow frameNumber=\"0\" file=\"1\" frameID=\"2\" timeYear=\"3\" timeMonth=\"4\" timeDay=\"5\""
        " timeHour=\"6\" timeMin=\"7\" timeSec=\"8\" timeMs=\"9\" dataType=\"10\" key=\"11\" type=\"12\""
        " value=\"13\" A=\"A\" alpha=\"a\" b:c=\"c\" keys=\"k\" zeta=\"z\">\n"
            + frame.toStdString() + "</DataFlow>\n");
}

TEST_F(kelDocumentTextTest, ForeignContentIsWrittenAsTheToolkitWritesIt)
{
    const QByteArray documents[] = {
        "<DataFlow/>",
        "<DataFlow b='2' a='1' c='3'></DataFlow>",
        "<!-- before <x b='1' a='2'> it's --><DataFlow b='2' a='1'/><!-- after <x d=\"1\" c=\"2\"> -->",
        "<?pi z=\"1\" a=\"2\" > x?><DataFlow b='2' a='1'><?in b='2' a='1'?></DataFlow>",
        "<?xml version=\"1.0\"?><DataFlow b='2' a='1'/>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<DataFlow b='2' a='1'/>",
        "<DataFlow><![CDATA[<x b=\"2\" a=\"1\"> > ' \" & ]]><z f='6' e='5' d='4' c='3' b='2' "
        "a='1'/><![CDATA[1 < 2 < 3]]><z f='6' e='5' d='4' c='3' b='2' a='1'/></DataFlow>",
        "<DataFlow b='a>b' a='x\"y' c=\"it's\" d='&lt;e f=\"1\"/&gt;' g='a=b' h=' =\"'/>",
        "<DataFlow b='&#9;&#10;&#13;&amp;&apos;' a=''/>",
        "<DataFlow>text &lt;b&gt; &amp; more<x d='1' c='2'/>tail > end</DataFlow>",
        "<k:DataFlow xmlns:k='urn:k' xmlns='urn:d' k:b='2' k:a='1' b='3'><k:x k:d='1' c='2'/></k:DataFlow>",
        "<!DOCTYPE DataFlow><DataFlow b='2' a='1'/>",
        "<!DOCTYPE DataFlow SYSTEM \"a>b'c.dtd\"><DataFlow b='2' a='1'/>",
        "<!DOCTYPE DataFlow PUBLIC \"-//X//Y//EN\" 'a\"b>c.dtd'><DataFlow b='2' a='1'/>",
        "<!DOCTYPE DataFlow [<!ENTITY foo \"b&#39;a>r &#34;q\"><!ELEMENT DataFlow ANY>]>"
        "<DataFlow b='&foo;' a='1'>t&foo;<x d='1' c='&foo;'/></DataFlow>",
        "<!DOCTYPE DataFlow [<!ENTITY ext SYSTEM \"a>b.ent\"><!NOTATION n SYSTEM \"x>y\">]>"
        "<DataFlow b='2' a='1'/>",
        "<DataFlow>\n\n  <Frame   b = '2'\n\ta='1'   frameNumber='7' ></Frame  >\n</DataFlow>",
        "<DataFlow \xc3\xa9='2' a='\xe2\x82\xac \xf0\x9f\x98\x80'>\xc3\xa9<\xc3\xa9l\xc3\xa8ve b='1' "
        "a='2'/></DataFlow>",
    };
    for (const QByteArray &foreign : documents) {
        SCOPED_TRACE(foreign.toStdString());
        const QByteArray written = rewritten(foreign);
        EXPECT_EQ(QString::fromUtf8(written), ordered(document().toString(1)));

        QDomDocument before, after;
        ASSERT_TRUE(before.setContent(foreign));
        ASSERT_TRUE(after.setContent(written));
        QDomElement root = after.documentElement();
        EXPECT_EQ(root.tagName(), before.documentElement().tagName());
        ASSERT_EQ(root.lastChildElement().tagName(), "Frame");
        root.removeChild(root.lastChildElement());
        EXPECT_EQ(texts(root).join('|').simplified(), texts(before.documentElement()).join('|').simplified());
    }
}

TEST_F(kelDocumentTextTest, ASecondFrameIsWrittenAsTheToolkitWritesIt)
{
    recorded({{"BoundingBox2D", QRect(10, 20, 30, 40)}, {"<&\">' =/", 7}});
    MessageCapture messages;
    ASSERT_TRUE(writer->writeDataFlow());
    EXPECT_EQ(QString::fromUtf8(content("run.xml")), ordered(document().toString(1)));
}

TEST_F(kelDocumentTextTest, TheSameRunGivesTheSameBytes)
{
    const QVariantMap map{{"BoundingBox2D", QRect(10, 20, 30, 40)}, {"area", 7}};
    const QByteArray first = recorded(map);
    EXPECT_EQ(recorded(map), first);
}

TEST_F(kelDocumentTextTest, KeysBeyondAsciiAreUtf8)
{
    const QByteArray written = recorded({{QString::fromUtf8("\u00e9\u20ac\U0001F600"), 1}});
    EXPECT_TRUE(
        written.contains("<entry key=\"\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\" type=\"int\" value=\"\"/>"))
        << written.toStdString();
}

TEST_F(kelDocumentTextTest, WhatXmlCannotCarryIsReplaced)
{
    const char *const replacement = "\xef\xbf\xbd";
    const struct
    {
        QString key;
        std::string written;
    } cases[] = {
        {QString("a") + QChar(0) + "b", std::string("a") + replacement + "b"},
        {QString("a") + QChar(1) + QChar(0x1f) + "b", std::string("a") + replacement + replacement + "b"},
        {QString("a") + QChar(0xd800) + "b", std::string("a") + replacement + "b"},
        {QString("a") + QChar(0xdc00) + "b", std::string("a") + replacement + "b"},
        {QString(QChar(0xdc00)) + QChar(0xd800), std::string(replacement) + replacement},
        {QString(QChar(0xd83d)) + QChar(0xd83d) + QChar(0xde00),
         replacement + std::string("\xf0\x9f\x98\x80")},
        {QString("a") + QChar(0xfffe) + QChar(0xffff) + "b",
         std::string("a") + replacement + replacement + "b"},
        {QString("a\tb\nc\rd"), "a&#x9;b&#xa;c&#xd;d"},
        {QString(QChar(0x7f)) + QChar(0x85) + QChar(0xfffd) + QChar(0xe000),
         std::string("\x7f\xc2\x85") + replacement + "\xee\x80\x80"},
    };
    for (const auto &one : cases) {
        const QByteArray written = recorded({{one.key, 1}});
        EXPECT_TRUE(
            written.contains(("<entry key=\"" + one.written + "\" type=\"int\" value=\"\"/>").c_str()))
            << written.toStdString();
        QDomDocument parsed;
        EXPECT_TRUE(parsed.setContent(written)) << written.toStdString();
    }
}

TEST_F(kelDocumentTextTest, DifficultKeysAreReadBackAsTheyWere)
{
    for (const char *key : {"<&>\"'", "a=\"b\" c='d'", "/>", "-->", "]]>", "?>", " a  b ", "\t\n", ""}) {
        QDomDocument parsed;
        ASSERT_TRUE(parsed.setContent(recorded({{key, 1}}))) << key;
        const QDomElement entry =
            parsed.documentElement().lastChildElement().lastChildElement().firstChildElement();
        EXPECT_EQ(entry.attribute("key", "missing"), key);
        EXPECT_EQ(entry.attribute("type"), "int");
    }
}

TEST_F(kelDocumentTextTest, ADocumentOfAnotherEncodingBecomesUtf8)
{
    const QString text =
        QString::fromUtf8("<?xml version='1.0' encoding='%1'?><DataFlow a='\u00e9'>\u00e9</DataFlow>");
    const QByteArray utf16 = [&text] {
        const QString all = text.arg("UTF-16");
        QByteArray bytes("\xff\xfe");
        for (const QChar c : all)
            bytes.append(static_cast<char>(c.unicode() & 0xff)).append(static_cast<char>(c.unicode() >> 8));
        return bytes;
    }();
    const QByteArray documents[] = {
        text.arg("ISO-8859-1").toLatin1(),
        QString(text).replace("encoding='%1'", "encoding = \"iso-8859-1\" ").toLatin1(),
        QString(text).replace("'%1'", "'ISO-8859-1' standalone='no'").toLatin1(),
        text.arg("utf-8").toUtf8(),
        QByteArray("\xef\xbb\xbf") + text.arg("UTF-8").toUtf8(),
        utf16,
    };
    writer->setDataFlow(blob({{QString::fromUtf8("\u20ac\U0001F600"), 1}}));
    for (const QByteArray &foreign : documents) {
        SCOPED_TRACE(foreign.toStdString());
        write("run.xml", foreign);
        MessageCapture messages;
        ASSERT_TRUE(writer->writeDataFlow());
        EXPECT_EQ(messages.lines(), (QStringList{"\n xml entry added", "\n frame saved"}));

        const QByteArray written = content("run.xml");
        EXPECT_TRUE(written.startsWith("<?xml version='1.0' encoding='UTF-8'")
                    || written.startsWith("<?xml version='1.0' encoding='utf-8'"))
            << written.toStdString();
        EXPECT_TRUE(written.contains("<DataFlow a=\"\xc3\xa9\">\xc3\xa9<")) << written.toStdString();
        EXPECT_TRUE(written.contains("key=\"\xe2\x82\xac\xf0\x9f\x98\x80\"")) << written.toStdString();
        QDomDocument parsed;
        ASSERT_TRUE(parsed.setContent(written));
        EXPECT_EQ(parsed.documentElement().attribute("a"), QString::fromUtf8("\u00e9"));
        EXPECT_EQ(parsed.documentElement().firstChild().nodeValue().trimmed(), QString::fromUtf8("\u00e9"));
        // And the next frame finds it well.
        ASSERT_TRUE(writer->writeDataFlow());
        EXPECT_EQ(content("run.xml").count("<Frame "), 2);
    }
}

TEST_F(kelDocumentTextTest, TheRestOfTheDeclarationStays)
{
    EXPECT_EQ(
        rewritten("<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?><DataFlow/>").toStdString(),
        "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\n<DataFlow>\n" + frame.toStdString()
            + "</DataFlow>\n");
    EXPECT_EQ(rewritten("<?xml version='1.0'?><DataFlow/>").toStdString(),
              "<?xml version='1.0'?>\n<DataFlow>\n" + frame.toStdString() + "</DataFlow>\n");
}

TEST_F(kelDocumentTextTest, OnlyTheXmlDeclarationIsMadeToSayUtf8)
{
    EXPECT_EQ(rewritten("<?style encoding='x'?><DataFlow b=\"encoding='x'\"/>").toStdString(),
              "<?style encoding='x'?>\n<DataFlow b=\"encoding='x'\">\n" + frame.toStdString()
                  + "</DataFlow>\n");
}

TEST_F(kelDocumentTextTest, AStylesheetInstructionThatNamesAnEncodingIsNoDeclarationOfIt)
{
    const std::string text = "\xc3\xa9\xe2\x82\xac";
    for (const std::string encoding : {"ISO-8859-1", "UTF-16", "x"})
        for (const std::string mark : {"", "\xef\xbb\xbf"}) {
            const std::string instruction = "<?xml-stylesheet href='a.xsl' encoding='" + encoding + "'?>";
            const std::string expected = "<?xml version='1.0' encoding='UTF-8'?>\n" + instruction
                + "\n<DataFlow a=\"" + text + "\">\n";
            std::string frames = frame.toStdString();
            EXPECT_EQ(rewritten((mark + instruction + "<DataFlow a='" + text + "'/>").c_str()).toStdString(),
                      expected + frames + "</DataFlow>\n");
            for (int i = 0; i < 3; ++i) { // and it stays as it is
                frames += frame.toStdString();
                MessageCapture messages;
                EXPECT_TRUE(writer->writeDataFlow());
                EXPECT_EQ(content("run.xml").toStdString(), expected + frames + "</DataFlow>\n");
                EXPECT_TRUE(everyParserTakes(content("run.xml")));
            }
        }
    EXPECT_EQ(rewritten("<?xml-stylesheet href='a.xsl'?><DataFlow/>").toStdString(),
              "<?xml-stylesheet href='a.xsl'?>\n<DataFlow>\n" + frame.toStdString() + "</DataFlow>\n");
}

TEST_F(kelDocumentTextTest, AUtf16DocumentIsReadAgainAfterEachFrame)
{
    for (const char *head :
         {"", "<!-- c -->", "<?xml version='1.0'?>", "<?xml version='1.0' encoding='UTF-16'?>",
          "<?xml-stylesheet href='a' encoding='UTF-16'?>"}) {
        const QString text = QLatin1String(head) + QString::fromUtf8("<DataFlow a='\u00e9'/>");
        QByteArray bytes("\xff\xfe");
        for (const QChar c : text)
            bytes.append(static_cast<char>(c.unicode() & 0xff)).append(static_cast<char>(c.unicode() >> 8));
        QByteArray written = rewritten(bytes);
        for (int frames = 2; frames < 5; ++frames) {
            SCOPED_TRACE(written.toStdString());
            EXPECT_TRUE(everyParserTakes(written));
            const QByteArray before = written;
            MessageCapture messages;
            EXPECT_TRUE(writer->writeDataFlow());
            written = content("run.xml");
            EXPECT_EQ(written.count("<Frame "), frames);
            EXPECT_TRUE(written.contains("<DataFlow a=\"\xc3\xa9\">"));
            EXPECT_EQ(before.toStdString().substr(0, before.size() - 12),
                      written.toStdString().substr(0, before.size() - 12)); // but for the last line
        }
    }
}

TEST_F(kelDocumentTextTest, FurtherFramesLeaveTheRestAsItIs)
{
    for (const char *foreign :
         {"<DataFlow b='2' a='1' c='3'/>", "<!-- before --><DataFlow/><!-- after -->",
          "<?xml version='1.0' encoding='ISO-8859-1'?><?xml-stylesheet encoding='UTF-16'?><DataFlow/>",
          "<DataFlow><![CDATA[<x b=\"2\"> > ' \" & ]]><z b='1'/></DataFlow>",
          "<DataFlow b='&#9;&#10;&#13;&amp;&apos;'>text &lt;b&gt;<x d='1'/></DataFlow>",
          "<!DOCTYPE DataFlow [<!ENTITY foo \"b&#39;a>r\">]><DataFlow b='&foo;'/>"}) {
        SCOPED_TRACE(foreign);
        QByteArray written = rewritten(foreign);
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(everyParserTakes(written));
            const std::string before = written.toStdString();
            MessageCapture messages;
            EXPECT_TRUE(writer->writeDataFlow());
            written = content("run.xml");
            const size_t end = before.rfind("</DataFlow>");
            EXPECT_EQ(written.toStdString(),
                      before.substr(0, end) + frame.toStdString() + before.substr(end));
        }
    }
}

TEST_F(kelDocumentTextTest, ANameWithAControlCharacterIsAnErrorForEveryParser)
{
    for (const char *foreign :
         {"<DataFlow a\x12z='1'/>", "<DataFlow><x a\x01='1'/></DataFlow>", "<!DOCTYPE D\x12><DataFlow/>"}) {
        write("run.xml", foreign);
        MessageCapture messages;
        EXPECT_FALSE(writer->writeDataFlow()) << foreign;
        EXPECT_EQ(messages.lines().value(0), "\n xml file content problem...");
        EXPECT_EQ(messages.lines().size(), 2);
        EXPECT_EQ(content("run.xml"), foreign);
    }
}

TEST_F(kelDocumentTextTest, TheFrameIsAppendedToTheRootWhateverStandsInFrontOrBehind)
{
    const QByteArray written = rewritten("<!-- a --><?b c?><DataFlow><x/></DataFlow><!-- d -->");
    EXPECT_EQ(written.toStdString(),
              "<!-- a -->\n<?b c?>\n<DataFlow>\n <x/>\n" + frame.toStdString() + "</DataFlow>\n<!-- d -->\n");
}

TEST_F(kelDocumentTextTest, TheSettingsOfTheLocaleDoNotMatter)
{
    const QLocale previous;
    QLocale::setDefault(QLocale("de_DE"));
    CSynchronizer stamp;
    stamp.setFrameNumber(1234567);
    writer->setSynchronizer(stamp);
    const QByteArray written = recorded({{"k", QRect(1234567, 0, 1, 1)}});
    QLocale::setDefault(previous);
    EXPECT_TRUE(written.contains("<Frame frameNumber=\"1234567\">")) << written.toStdString();
    EXPECT_TRUE(written.contains("value=\"1234567 0 1 1\"")) << written.toStdString();
}
