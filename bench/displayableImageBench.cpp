/// \file
/// A displayable image of a matrix of any depth, beside OpenCV's stretching of values to a range.

#include "Comparison.h"

#include <kelCore/utils/opencvutils.h>

#include <opencv2/core.hpp>

namespace {

void stretch(benchmark::State &state, int type, double bound)
{
    cv::Mat source(480, 640, type);
    cv::RNG(1).fill(source, cv::RNG::UNIFORM, 0, 9000);
    cv::Mat library, plain;
    compare(
        state, bound, [&] { return seconds([&] { OpenCVUtils::cvtUChar(source, library); }); },
        [&] { return seconds([&] { cv::normalize(source, plain, 0, 255, cv::NORM_MINMAX, CV_8U); }); });
    if (library.type() != plain.type() || cv::norm(library, plain, cv::NORM_INF) > 1)
        state.SkipWithError("the images differ");
}

} // namespace

BENCHMARK_CAPTURE(stretch, floats, CV_32FC3, 0.55)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(501);
BENCHMARK_CAPTURE(stretch, shorts, CV_16UC3, 0.75)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(501);
