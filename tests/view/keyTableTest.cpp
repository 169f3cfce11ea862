#include <kelCore/view/MyQGraphicsScene.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QStringList>

#include <set>

namespace {

/// The rows of the table of keys in the document, up to the column "at first".
QStringList documented()
{
    QFile file(KEL_SOURCE_DIR "/docs/views.md");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines = lines.mid(lines.indexOf(QStringLiteral("| key | shows | at first | drawn from |")) + 2);
    QStringList rows;
    for (const QString &line : qAsConst(lines)) {
        if (!line.startsWith(QLatin1Char('|')))
            break;
        rows.append(line.section(QLatin1Char('|'), 0, 3));
    }
    return rows;
}

} // namespace

TEST(keyTableTest, TheDocumentHasTheKeysOfTheView)
{
    const MyQGraphicsScene atFirst;
    QStringList expected;
    for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys()) {
        const QString state = !key.state ? QString::number(atFirst.trajectoryLength)
                                         : QString(atFirst.*key.state ? "on" : "off");
        expected.append(QStringLiteral("| %1 | %2 | %3 ").arg(QString(key.name), QString(key.help), state));
    }
    EXPECT_EQ(documented().join('\n').toStdString(), expected.join('\n').toStdString());
}

TEST(keyTableTest, EverySwitchHasAKeyOfItsOwn)
{
    std::set<int> codes;
    int turned = 0;
    for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys()) {
        MyQGraphicsScene scene;
        EXPECT_TRUE(codes.insert(key.code).second) << key.name;
        EXPECT_NE(key.state != nullptr, key.step != 0) << key.name;
        EXPECT_TRUE(scene.press(key.code)) << key.name;
        if (key.state) {
            EXPECT_NE(scene.*key.state, MyQGraphicsScene().*key.state) << key.name;
            ++turned;
        } else {
            EXPECT_EQ(scene.trajectoryLength, 30 + key.step) << key.name;
        }
    }
    EXPECT_EQ(turned, 13);
}

TEST(keyTableTest, AKeyIsNamedAsItIsWritten)
{
    for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys()) {
        const QString name(key.name);
        EXPECT_TRUE(name == "Escape" || (name.size() == 1 && name[0].unicode() == key.code)) << key.name;
    }
}

TEST(keyTableTest, OtherKeysAreRefusedAndChangeNothing)
{
    MyQGraphicsScene scene;
    for (const int code : {int(Qt::Key_X), int(Qt::Key_Up), int(Qt::Key_Space), 0, -1})
        EXPECT_FALSE(scene.press(code)) << code;
    const MyQGraphicsScene atFirst;
    for (const MyQGraphicsScene::Key &key : MyQGraphicsScene::keys())
        EXPECT_TRUE(!key.state || scene.*key.state == atFirst.*key.state) << key.name;
    EXPECT_EQ(scene.trajectoryLength, atFirst.trajectoryLength);
}
