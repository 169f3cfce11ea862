/// \file
/// Runs the tests, or one of the situations that need a process of their own: each ends with 0 when all went well.

#include "situations.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (!std::freopen("/dev/null", "r", stdin))
        return EXIT_FAILURE;
    for (const Situation &situation : situations()) {
        if (argc == 2 && std::strcmp(argv[1], situation.name) == 0)
            return situation.run(argc, argv) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
