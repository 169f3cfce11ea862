#include "support/RgbdView.h"

#include <QLocale>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>

using namespace rgbd;

// Events.

TEST(kelViewRGBDTest, EventsAreListedUnderTheirHeading)
{
    View view;
    view.setEvents({event(3, "Fall", 0.87), event(12, "Sit down", 1), event(-1, "", 0.1234567)});
    view.drawEvents();
    EXPECT_EQ(texts(view),
              (Strings{"EVENT LIST :  at 3, 3", "3 / Fall [0.870000] at 5, 30",
                       "12 / Sit down [1.000000] at 5, 52", "-1 /  [0.123457] at 5, 74"}));
    for (const auto *item : view.all<QGraphicsTextItem>())
        expectFont(*item, 16, QFont::Normal, Qt::red);
}

TEST(kelViewRGBDTest, ManyEventsRunDownTheScreen)
{
    View view;
    view.setEvents(std::list<Event>(40, event(1, "a", 0)));
    view.drawEvents();
    const auto items = view.all<QGraphicsTextItem>();
    ASSERT_EQ(items.size(), 41u);
    for (size_t i = 1; i < items.size(); ++i)
        EXPECT_EQ(items[i]->pos(), QPointF(5, 30 + 22 * static_cast<int>(i - 1)));
}

TEST(kelViewRGBDTest, NamesOfEventsAreShownAsTheyAre)
{
    View view;
    view.setEvents({event(1, "<b>bold</b> &amp; %1 %d %2", 0.5), event(2, "Ch\xc3\xbbte", 0.5)});
    view.drawEvents();
    EXPECT_EQ(words(view).at(1), "1 / <b>bold</b> &amp; %1 %d %2 [0.500000]");
    EXPECT_EQ(words(view).at(2), "2 / Ch\xc3\xbbte [0.500000]");
}

namespace {

/// Both the toolkit's numbers and C's have a decimal comma, where the system has such a locale.
struct CommaLocale
{
    CommaLocale()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        for (const char *name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "nb_NO.UTF-8"})
            if (std::setlocale(LC_NUMERIC, name))
                break;
    }
    ~CommaLocale()
    {
        std::setlocale(LC_NUMERIC, c.c_str());
        QLocale::setDefault(toolkit);
    }

    const QLocale toolkit;
    const std::string c = std::setlocale(LC_NUMERIC, nullptr);
};

std::string confidenceLine(double confidence)
{
    View view;
    view.setEvents({event(1, "a", confidence)});
    view.drawEvents();
    return words(view).at(1);
}

} // namespace

TEST(kelViewRGBDTest, ConfidencesAreAsCPrintsThemInEveryLocale)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const std::pair<double, const char *> numbers[] = {
        {0.87, "0.870000"},
        {1234567.5, "1234567.500000"},
        {-2.0000005e-1, "-0.200000"},
        {1e-9, "0.000000"},
        {-1e-9, "-0.000000"},
        {-0.0, "-0.000000"},
        {0.9453125, "0.945312"},
        {0.0078125, "0.007812"},
        {0.0234375, "0.023438"},
        {-0.9453125, "-0.945312"},
        {1e20, "100000000000000000000.000000"},
        {infinity, "inf"},
        {-infinity, "-inf"},
        {none, "nan"},
        {-none, "-nan"},
    };
    for (const auto &[number, text] : numbers) {
        const std::string wanted = "1 / a [" + std::string(text) + "]";
        EXPECT_EQ(confidenceLine(number), wanted);
        char printed[64];
        std::snprintf(printed, sizeof printed, "%f", number);
        EXPECT_STREQ(printed, text);
        const CommaLocale locale;
        EXPECT_EQ(confidenceLine(number), wanted) << "with a decimal comma";
    }
}

TEST(kelViewRGBDTest, TheLongestConfidencesAreAsCPrintsThem)
{
    std::mt19937_64 random(5);
    for (int i = 0; i < 2000; ++i) {
        const quint64 bits = random();
        double number;
        std::memcpy(&number, &bits, sizeof number);
        if (i < 2)
            number = std::numeric_limits<double>::max() * (i ? -1 : 1);
        char printed[400];
        std::snprintf(printed, sizeof printed, "%f", number);
        ASSERT_EQ(confidenceLine(number), "1 / a [" + std::string(printed) + "]");
    }
}

// The labels of the actors.

TEST(kelViewRGBDTest, AnActorIsLabelledWithIdHeightAndSpeed)
{
    View view;
    view.setActors({measured(7, cv::Rect(100, 200, 50, 150), 1725.9f, 1.239),
                    measured(17, cv::Rect(300, 100, 50, 150), 1800, 0.5)});
    view.drawActorInfos();
    EXPECT_EQ(texts(view),
              (Strings{"Id    : 7 at 100, 145", "HeightA:172cm at 100, 160", "Speed : 1.23m/s at 100, 175",
                       "Id    : 17 at 300, 45", "HeightA:180cm at 300, 60", "Speed : 0.50m/s at 300, 75"}));
    const auto items = view.all<QGraphicsTextItem>();
    for (size_t i = 0; i < items.size(); ++i)
        expectFont(*items[i], 12, QFont::Bold, i < 3 ? palette[7] : palette[1]);
}

TEST(kelViewRGBDTest, IdsAreShownUnsigned)
{
    View view;
    view.setActors({actor(0), actor(2147483648u), actor(4294967295u)});
    view.drawActorInfos();
    EXPECT_EQ(words(view).at(0), "Id    : 0");
    EXPECT_EQ(words(view).at(3), "Id    : 2147483648");
    EXPECT_EQ(words(view).at(6), "Id    : 4294967295");
    expectFont(*view.all<QGraphicsTextItem>().at(6), 12, QFont::Bold, Qt::lightGray);
}

TEST(kelViewRGBDTest, HeightsAreCutToWholeCentimetres)
{
    const auto label = [](float height) {
        View view;
        view.setActors({measured(1, cv::Rect(), height, 0)});
        view.drawActorInfos();
        return words(view).at(1);
    };
    EXPECT_EQ(label(0), "HeightA:0cm");
    EXPECT_EQ(label(9.99f), "HeightA:0cm");
    EXPECT_EQ(label(10), "HeightA:1cm");
    EXPECT_EQ(label(1719.99f), "HeightA:171cm");
    EXPECT_EQ(label(1720), "HeightA:172cm");
    EXPECT_EQ(label(-9.99f), "HeightA:0cm");
    EXPECT_EQ(label(-19.99f), "HeightA:-1cm");
    EXPECT_EQ(label(-20), "HeightA:-2cm");
    EXPECT_EQ(label(12345678), "HeightA:1234567cm");
}

TEST(kelViewRGBDTest, SpeedsAreRoundedDownToTwoDecimals)
{
    const auto label = [](double speed) {
        View view;
        view.setActors({measured(1, cv::Rect(), 0, speed)});
        view.drawActorInfos();
        return words(view).at(2);
    };
    EXPECT_EQ(label(0), "Speed : 0.00m/s");
    EXPECT_EQ(label(1), "Speed : 1.00m/s");
    EXPECT_EQ(label(1.999), "Speed : 1.99m/s");
    EXPECT_EQ(label(0.29), "Speed : 0.28m/s") << "0.29 * 100 lies below 29";
    EXPECT_EQ(label(-1.231), "Speed : -1.24m/s");
    EXPECT_EQ(label(-0.001), "Speed : -0.01m/s");
    EXPECT_EQ(label(-3), "Speed : -3.00m/s");
    EXPECT_EQ(label(123456.789), "Speed : 123456.78m/s");
}

TEST(kelViewRGBDTest, LargeSpeedsAreCutAndNotRounded)
{
    // The quotient is 123456789012.339996 with six decimals.
    for (const double speed : {123456789012.345, 98765432109.87, 5e10 + 0.07, 1e15, 1e20, 1e300}) {
        View view;
        view.setActors({measured(1, cv::Rect(), 0, speed)});
        view.drawActorInfos();
        char number[512];
        std::snprintf(number, sizeof number, "%f", std::floor(speed * 100) / 100);
        std::string wanted = number;
        wanted.resize(wanted.find('.') + 3);
        EXPECT_EQ(words(view).at(2), "Speed : " + wanted + "m/s");
        if (speed == 123456789012.345) {
            EXPECT_EQ(wanted, "123456789012.33");
        }
    }
}

TEST(kelViewRGBDTest, LabelsAreTheSameInAnyLocale)
{
    const CommaLocale locale;
    View view;
    view.setActors({measured(1234567, cv::Rect(), 12345678, 12345.678)});
    view.drawActorInfos();
    EXPECT_EQ(words(view), (Strings{"Id    : 1234567", "HeightA:1234567cm", "Speed : 12345.67m/s"}));
}

TEST(kelViewRGBDTest, SpeedsThatAreNoNumberDoNoHarm)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double speed : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        View view;
        view.setActors({measured(1, cv::Rect(), 0, speed)});
        view.drawActorInfos();
        ASSERT_EQ(words(view).size(), 3u);
        EXPECT_EQ(words(view)[2].substr(0, 8), "Speed : ");
    }
}

TEST(kelViewRGBDTest, LabelsStandAboveBelowOrBesideTheBox)
{
    // Where the label in the middle stands.
    const auto anchor = [](const cv::Rect &box) {
        View view;
        view.setActors({actor(1, box)});
        view.drawActorInfos();
        const auto items = view.all<QGraphicsTextItem>();
        EXPECT_EQ(items.size(), 3u);
        EXPECT_EQ(items.at(0)->pos(), items.at(1)->pos() - QPointF(0, 15));
        EXPECT_EQ(items.at(2)->pos(), items.at(1)->pos() + QPointF(0, 15));
        return items.at(1)->pos();
    };
    // Above, as long as there is room.
    EXPECT_EQ(anchor({100, 200, 50, 150}), QPointF(100, 160));
    EXPECT_EQ(anchor({100, 51, 50, 400}), QPointF(100, 11));
    EXPECT_EQ(anchor({630, 51, 50, 400}), QPointF(630, 11));
    // Below.
    EXPECT_EQ(anchor({100, 50, 50, 379}), QPointF(100, 444));
    EXPECT_EQ(anchor({100, 50, 50, 100}), QPointF(100, 165));
    EXPECT_EQ(anchor({100, -20, 50, 100}), QPointF(100, 95));
    EXPECT_EQ(anchor({100, 29, 50, 400}), QPointF(100, 444));
    // Beside, where there is more room.
    EXPECT_EQ(anchor({100, 50, 50, 380}), QPointF(155, 60));
    EXPECT_EQ(anchor({100, 30, 50, 400}), QPointF(155, 40));
    EXPECT_EQ(anchor({269, 0, 100, 480}), QPointF(374, 10));
    EXPECT_EQ(anchor({270, 0, 100, 480}), QPointF(130, 10));
    EXPECT_EQ(anchor({271, 0, 100, 480}), QPointF(131, 10));
    EXPECT_EQ(anchor({600, 30, 30, 410}), QPointF(460, 40));
    EXPECT_EQ(anchor({-10, -10, 10, 600}), QPointF(5, 0));
    // An actor without a box.
    EXPECT_EQ(anchor({-1, -1, 0, 0}), QPointF(-1, 14));
}

// The frame rate.

TEST(kelViewRGBDTest, TheFrameRateStandsInTheUpperRightCorner)
{
    View view;
    view.drawFrameRate();
    EXPECT_EQ(texts(view), (Strings{"FPS : 0 at 565, 3"}));
    expectFont(*view.all<QGraphicsTextItem>().at(0), 12, QFont::Normal, Qt::red);
    for (const int rate : {25, -1, 1234567}) {
        view.setFrameRate(rate);
        view.drawFrameRate();
        EXPECT_EQ(texts(view).back(), "FPS : " + std::to_string(rate) + " at 565, 3");
    }
}

TEST(kelViewRGBDTest, TheFrameRateIsOnTheScreenAndNotInThePicture)
{
    View view;
    view.setAcquisitionImage(frame(640, 480));
    const cv::Mat with = view.picture();
    EXPECT_EQ(content(view).back(), "FPS");
    EXPECT_NE(differentBytes(with, rendered(*view.scene())), 0) << "it can be seen on the screen";
    view.press(Qt::Key_W);
    const cv::Mat without = view.picture();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST"}));
    EXPECT_EQ(differentBytes(with, without), 0);
    EXPECT_EQ(differentBytes(without, rendered(*view.scene())), 0);
}
