/// \file
/// Loading a raw depth file, beside one read() of its bytes.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>

#include <opencv2/core.hpp>

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <iostream>

namespace {

void load(benchmark::State &state)
{
    const BenchFolder folder(BenchFolder::InMemory);
    const int size[] = {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    cv::Mat depth(size[0], size[1], CV_32F);
    cv::RNG(1).fill(depth, cv::RNG::UNIFORM, 0.5, 9);
    const std::size_t bytes = depth.total() * depth.elemSize();
    {
        QFile file("depth.raw");
        file.open(QIODevice::WriteOnly);
        file.write(reinterpret_cast<const char *>(size), sizeof size);
        file.write(reinterpret_cast<const char *>(depth.data), static_cast<qint64>(bytes));
    }
    kelAbstractDataCalibrationWithDepth camera;
    camera.setDepthInformation(cv::Mat(size[0], size[1], CV_32F, cv::Scalar(0)));
    cv::Mat plain(1, static_cast<int>(bytes + sizeof size), CV_8U, cv::Scalar(0));

    const QString name("depth.raw");
    std::streambuf *output = std::cout.rdbuf(nullptr);
    compare(
        state, 1.2, [&] { return seconds([&] { camera.setDepthInformation(name); }); },
        [&] {
            return seconds([&] {
                const int file = ::open("depth.raw", O_RDONLY | O_CLOEXEC);
                if (::read(file, plain.data, plain.total()) != static_cast<ssize_t>(plain.total()))
                    state.SkipWithError("the file was not read");
                ::close(file);
            });
        });
    std::cout.rdbuf(output);
    if (std::memcmp(camera.getDepthInformation().data, depth.data, bytes) != 0)
        state.SkipWithError("the maps differ");
}

} // namespace

BENCHMARK(load)->Args({480, 640})->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(501);
BENCHMARK(load)->Args({2160, 3840})->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(51);
