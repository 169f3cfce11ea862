#include <kelCore/data/ContextElement.h>

#include "support/Capture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>
#include <random>
#include <sstream>

namespace {

ContextElement element(const char *shape)
{
    ContextElement element;
    element.semantic = "zone";
    element.name = "by the door";
    element.height = 2.5;
    element.shape = shape;
    element.radius = 0.75;
    element.center = cv::Point3d(1, -2, 3.5);
    element.polygonVertices = {cv::Point3d(1, 2, 3), cv::Point3d(-1.5, 1234567, 1e-5)};
    element.polygonIsClosed = 1;
    element.cubeVertices = {cv::Point3d(4, 5, 6)};
    element.cubeIsClosed = -7;
    return element;
}

std::string displayed(const ContextElement &element)
{
    OutputCapture output;
    element.displayObject();
    return output.take();
}

/// Stands in for standard output and counts what arrives.
class CountingBuffer : public std::streambuf
{
public:
    CountingBuffer() : m_previous(std::cout.rdbuf(this)) { }
    ~CountingBuffer() override { std::cout.rdbuf(m_previous); }

    std::string text;
    int pieces = 0;
    int flushes = 0;

protected:
    std::streamsize xsputn(const char *data, std::streamsize count) override
    {
        text.append(data, static_cast<std::size_t>(count));
        ++pieces;
        return count;
    }
    int overflow(int character) override
    {
        text += static_cast<char>(character);
        ++pieces;
        return character;
    }
    int sync() override
    {
        ++flushes;
        return 0;
    }

private:
    std::streambuf *m_previous;
};

} // namespace

TEST(ContextElementTest, AFreshElementIsEmptyAndZero)
{
    const ContextElement fresh;
    EXPECT_EQ(fresh.semantic, "");
    EXPECT_EQ(fresh.name, "");
    EXPECT_EQ(fresh.height, 0);
    EXPECT_EQ(fresh.shape, "");
    EXPECT_EQ(fresh.radius, 0);
    EXPECT_EQ(fresh.center, cv::Point3d(0, 0, 0));
    EXPECT_TRUE(fresh.polygonVertices.empty());
    EXPECT_EQ(fresh.polygonIsClosed, 0);
    EXPECT_TRUE(fresh.cubeVertices.empty());
    EXPECT_EQ(fresh.cubeIsClosed, 0);
}

TEST(ContextElementTest, MembersAreInTheStatedOrder)
{
    const ContextElement e;
    const void *const members[] = {&e.semantic,     &e.name,        &e.height,          &e.shape,
                                   &e.radius,       &e.center,      &e.polygonVertices, &e.polygonIsClosed,
                                   &e.cubeVertices, &e.cubeIsClosed};
    EXPECT_EQ(members[0], &e);
    for (std::size_t i = 1; i < std::size(members); ++i)
        EXPECT_LT(members[i - 1], members[i]) << "member " << i;
}

TEST(ContextElementTest, ACopyHasVerticesOfItsOwn)
{
    ContextElement from = element("polygon");
    const ContextElement copy = from;
    from.polygonVertices.front().x = 99;
    from.cubeVertices.clear();
    from.name = "other";
    EXPECT_EQ(copy.polygonVertices.front(), cv::Point3d(1, 2, 3));
    EXPECT_EQ(copy.cubeVertices.size(), 1u);
    EXPECT_EQ(copy.name, "by the door");
}

TEST(ContextElementTest, DisplaysAPolygon)
{
    EXPECT_EQ(displayed(element("polygon")),
              "Semantic: zone\n"
              "Name: by the door\n"
              "Shape: polygon\n"
              "Height: 2.5\n"
              "isClosed: 1\n"
              "No. of Vertices: 2\n"
              "Vertices Coordinates:\n"
              "x: 1 y: 2 z: 3\n"
              "x: -1.5 y: 1.23457e+06 z: 1e-05\n");
}

TEST(ContextElementTest, DisplaysACube)
{
    EXPECT_EQ(displayed(element("cube")),
              "Semantic: zone\n"
              "Name: by the door\n"
              "Shape: cube\n"
              "Height: 2.5\n"
              "isClosed: -7\n"
              "No. of Vertices: 1\n"
              "Vertices Coordinates:\n"
              "x: 4 y: 5 z: 6\n");
}

TEST(ContextElementTest, DisplaysACircle)
{
    EXPECT_EQ(displayed(element("circle")),
              "Semantic: zone\n"
              "Name: by the door\n"
              "Shape: circle\n"
              "Height: 2.5\n"
              "Radius: 0.75\n"
              "Center: x: 1 y: -2 z: 3.5\n");
}

TEST(ContextElementTest, DisplaysAnUnknownShapeAsInvalidWithAnEmptyLine)
{
    EXPECT_EQ(displayed(element("square")),
              "Semantic: zone\n"
              "Name: by the door\n"
              "Shape: square\n"
              "Height: 2.5\n"
              "Invalid shape!\n"
              "\n");
    EXPECT_EQ(displayed(ContextElement()), "Semantic: \nName: \nShape: \nHeight: 0\nInvalid shape!\n\n");
}

TEST(ContextElementTest, NumbersAreWrittenAsAStreamWritesThemByDefault)
{
    std::vector<double> numbers{0.0,
                                -0.0,
                                12345.25,
                                123456.5,
                                1234565,
                                999999.5,
                                1e300,
                                5e-324,
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN(),
                                -std::numeric_limits<double>::quiet_NaN()};
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        double number;
        const std::uint64_t bits = random();
        std::memcpy(&number, &bits, sizeof number);
        numbers.push_back(number);
        numbers.push_back(std::uniform_real_distribution<>(-1e4, 1e4)(random));
    }
    ContextElement e = element("circle");
    for (const double number : numbers) {
        e.radius = number;
        std::ostringstream expected;
        expected << "Semantic: zone\nName: by the door\nShape: circle\nHeight: 2.5\nRadius: " << number
                 << "\nCenter: x: 1 y: -2 z: 3.5\n";
        CountingBuffer output;
        e.displayObject();
        ASSERT_EQ(output.text, expected.str());
    }
}

TEST(ContextElementTest, TheTextLeavesInOnePieceAndIsFlushed)
{
    CountingBuffer output;
    element("polygon").displayObject();
    EXPECT_EQ(output.pieces, 1);
    EXPECT_EQ(output.flushes, 1);
}

TEST(ContextElementTest, FormatsThatSomebodyElseSetDoNotMatter)
{
    CountingBuffer output;
    const auto flags = std::cout.flags();
    const auto precision = std::cout.precision(2);
    std::cout << std::hex << std::fixed << std::showpos;
    element("polygon").displayObject();
    std::cout.flags(flags);
    std::cout.precision(precision);
    EXPECT_THAT(output.text, testing::HasSubstr("x: -1.5 y: 1.23457e+06 z: 1e-05\n"));
    EXPECT_THAT(output.text, testing::HasSubstr("isClosed: 1\n"));
}

TEST(ContextElementTest, AFailedStreamGetsNothing)
{
    CountingBuffer output;
    std::cout.setstate(std::ios::failbit);
    element("polygon").displayObject();
    std::cout.clear();
    EXPECT_EQ(output.text, "");
    element("polygon").displayObject();
    EXPECT_NE(output.text, "");
}
