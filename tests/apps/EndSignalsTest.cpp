#include "common/EndSignals.h"
#include "common/CpuTimeLimit.h"
#include "common/Failure.h"

#include <gtest/gtest.h>

#include <csignal>
#include <ctime>

TEST(EndSignalsDeathTest, TheFirstSignalIsNotedAndTheSecondEndsTheProgram)
{
    for (const int first : {SIGINT, SIGTERM})
        for (const int second : {SIGINT, SIGTERM})
            EXPECT_EXIT(
                {
                    const EndSignals signals_;
                    const bool before = signals_.caught();
                    std::raise(first);
                    if (!before && signals_.caught())
                        std::raise(second);
                },
                testing::KilledBySignal(second), "");
}

TEST(EndSignalsDeathTest, BehindTheLoopTheFirstSignalEndsTheProgram)
{
    EXPECT_EXIT(
        {
            {
                const EndSignals loop;
            }
            std::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}

TEST(CpuTimeLimitDeathTest, WhatComputesForTooLongIsEndedWithItsLine)
{
    EXPECT_EXIT(
        {
            const CpuTimeLimit limit(1, "the file has no end");
            for (volatile int i = 0;; i = 1 - i) { }
        },
        testing::ExitedWithCode(Failed), ": the file has no end\n");
}

TEST(CpuTimeLimitTest, WhatEndsInTimeGoesOn)
{
    {
        const CpuTimeLimit limit(1, "never said");
    }
    const std::clock_t end = std::clock() + 3 * CLOCKS_PER_SEC / 2;
    while (std::clock() < end) { }
}
