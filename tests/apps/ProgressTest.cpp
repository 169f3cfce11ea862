#include "kelrecord/Progress.h"

#include <gmock/gmock.h>

#include <functional>

namespace {
std::string said(const std::function<void()> &body)
{
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}
} // namespace

TEST(ProgressTest, TheLastFrameIsSaidInALineOfItsOwn)
{
    EXPECT_THAT(said([] {
                    Progress progress(3, false);
                    for (int frame = 1; frame <= 3; ++frame)
                        progress.update(frame);
                }),
                testing::MatchesRegex("frame 3 of 3, [0-9.]+ frames/s\n"));
}

TEST(ProgressTest, QuietSaysNothing)
{
    EXPECT_EQ(said([] { Progress(1, true).update(1); }), "");
}

TEST(ProgressTest, WithoutATotalNothingIsSaidBeforeTheTimeHasCome)
{
    EXPECT_EQ(said([] { Progress(0, false).update(1); }), "");
}
