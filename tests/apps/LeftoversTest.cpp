#include "kelrecord/Leftovers.h"

#include "support/TemporaryFolder.h"

#include <sys/stat.h>

namespace {
const QByteArray cut("<DataFlow>\n <Frame frameNumber=\"0\">");
const QByteArray whole("<DataFlow>\n <Frame frameNumber=\"0\">\n </Frame>\n</DataFlow>\n");
} // namespace

class LeftoversTest : public TemporaryFolder
{ };

TEST_F(LeftoversTest, TemporaryDocumentsAreRemovedAndNothingElse)
{
    write("dataflow.xml.aXbYcZ", whole); // random letters
    write("dataflow.xml.qwerty", cut); // a word, but what a kill left
    write("dataflow.xml.Qwerty", "");
    const QByteArrayList kept{"dataflow.xml",        "dataflow.dat",         "dataflow.xml.backup",
                              "dataflow.xml.Before", "dataflow.xml.aXbYcZd", "dataflow.xml.aXbYc1",
                              "dataflow.xml.aXbYc",  "other.xml.aXbYcZ",     "dataflow.xml.notes"};
    for (const QByteArray &name : kept)
        write(name, name.endsWith("notes") ? QByteArray("to do") : whole);
    QDir().mkdir("dataflow.xml.dIrEcT");
    ASSERT_TRUE(QFile::link("other.xml.aXbYcZ", "dataflow.xml.lInKed"));
    removeTemporaryDocuments("dataflow.xml");
    for (const QByteArray &name : kept)
        EXPECT_TRUE(QFile::exists(name)) << name.constData();
    EXPECT_TRUE(QFile::exists("dataflow.xml.dIrEcT"));
    EXPECT_TRUE(QFile::exists("dataflow.xml.lInKed"));
    EXPECT_EQ(QDir().entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot).size(), kept.size() + 2);
}
