#include "common/CommandLine.h"

#include <gtest/gtest.h>

#include <QCommandLineParser>

namespace {

const QStringList commands{"cat", "frame", "info", "render", "show", "verify"};

/// What `parse` says of a command line.
QString complaint(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOption({"out", "Where to.", "DIR"});
    parser.addOption({"overwrite", "Even so; --verbatim is no option."});
    try {
        parse(parser, arguments, "program", QString());
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.code(), Misused);
        return QString::fromUtf8(failure.what()).remove(" (--help shows how it is used)");
    }
    return QString();
}

double rate(const QString &value)
{
    QCommandLineParser parser;
    parser.addOption({"fps", "Rate.", "N"});
    parse(parser, {"--fps", value}, "program", QString());
    return realOption(parser, "fps", 0.5, 100, 7);
}

} // namespace

TEST(CommandLineTest, TheNearestWordIsTheOneWithTheFewestSlips)
{
    EXPECT_EQ(nearest("inof", commands), "info");
    EXPECT_EQ(nearest("verfy", commands), "verify");
    EXPECT_EQ(nearest("shoow", commands), "show");
    EXPECT_EQ(nearest("ver", commands), "verify") << "a word that was begun";
    EXPECT_EQ(nearest("dance", commands), QString());
    EXPECT_EQ(nearest("", commands), QString());
}

TEST(CommandLineTest, AnUnknownOptionIsShownAsWrittenWithTheNearestOne)
{
    EXPECT_EQ(complaint({"--ovrwrite"}), "there is no option --ovrwrite; did you mean --overwrite?");
    EXPECT_EQ(complaint({"--ouf=x"}), "there is no option --ouf; did you mean --out?");
    EXPECT_EQ(complaint({"-out", "x"}), "there is no option -out; did you mean --out?");
    EXPECT_EQ(complaint({"--verbatum"}), "there is no option --verbatum");
}

TEST(CommandLineTest, EmptyValuesAndArgumentsAreRefused)
{
    EXPECT_EQ(complaint({"--out", ""}), "the value of --out is empty");
    EXPECT_EQ(complaint({"--out="}), "the value of --out is empty");
    EXPECT_EQ(complaint({"a", ""}), "argument 2 is empty");
    EXPECT_EQ(complaint({"a", "--out", "b", "--overwrite"}), QString());
}

TEST(CommandLineTest, RealNumbersStandBetweenTheirBounds)
{
    EXPECT_EQ(rate("0.5"), 0.5);
    EXPECT_EQ(rate("1e2"), 100);
    for (const char *value : {"0.4", "101", "nan", "inf", "1e-320", "-1", "fast"})
        EXPECT_THROW(rate(value), Failure) << value;
}
