/// \file
/// The text of a matrix, beside OpenCV's at the same number of digits.

#include "Comparison.h"

#include <kelCore/utils/opencvutils.h>

#include <opencv2/core.hpp>

#include <sstream>

namespace {

void text(benchmark::State &state, int type, double bound)
{
    cv::Mat matrix(1000, 1000, type);
    const bool real = CV_MAT_DEPTH(type) >= CV_32F;
    cv::RNG(1).fill(matrix, cv::RNG::UNIFORM, real ? -1000 : 0, real ? 1000 : 256);
    const cv::Ptr<cv::Formatter> formatter = cv::Formatter::get();
    formatter->set32fPrecision(6);
    formatter->set64fPrecision(6);
    QString library;
    std::string plain;
    compare(
        state, bound, [&] { return seconds([&] { library = OpenCVUtils::matrixToString(matrix); }); },
        [&] {
            return seconds([&] {
                std::ostringstream stream;
                stream << formatter->format(matrix);
                plain = stream.str();
            });
        });
    if (library.count(QLatin1Char(',')) < 999000 || plain.size() < 3000000)
        state.SkipWithError("the texts are too short");
}

} // namespace

BENCHMARK_CAPTURE(text, floats, CV_32F, 0.25)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(5);
BENCHMARK_CAPTURE(text, doubles, CV_64F, 0.25)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(5);
BENCHMARK_CAPTURE(text, bytes, CV_8U, 0.2)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(5);
