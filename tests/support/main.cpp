/// \file
/// Runs the tests without a display and with an empty standard input.

#include <gtest/gtest.h>

#include <QApplication>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("TZ", "UTC", 1);
    if (!std::freopen("/dev/null", "r", stdin))
        return EXIT_FAILURE;
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
