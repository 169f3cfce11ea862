/// \file
/// A colour image to and from a byte stream, beside writing and reading its bytes.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/utils/opencvutils.h>

#include <opencv2/core.hpp>

#include <QFile>

#include <cstring>

namespace {

struct Image
{
    cv::Mat pixels = cv::Mat(480, 640, CV_8UC3);
    qint64 bytes = static_cast<qint64>(pixels.total() * pixels.elemSize());

    Image() { cv::RNG(1).fill(pixels, cv::RNG::UNIFORM, 0, 256); }
    char *data() { return reinterpret_cast<char *>(pixels.data); }
};

void write(benchmark::State &state)
{
    const BenchFolder folder(BenchFolder::InMemory);
    Image image;
    QFile library("library.dat"), plain("plain.dat");
    bool done = library.open(QIODevice::ReadWrite | QIODevice::Unbuffered)
        && plain.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    compare(
        state, 1.3,
        [&] {
            library.seek(0);
            return seconds([&] {
                QDataStream stream(&library);
                stream << image.pixels;
            });
        },
        [&] {
            plain.seek(0);
            return seconds([&] { done &= plain.write(image.data(), image.bytes) == image.bytes; });
        });
    library.seek(16);
    plain.seek(0);
    if (!done || library.readAll() != plain.readAll())
        state.SkipWithError("the bytes differ");
}

void read(benchmark::State &state)
{
    const BenchFolder folder(BenchFolder::InMemory);
    Image image, fromLibrary, fromPlain;
    fromLibrary.pixels.setTo(0);
    QFile file("image.dat");
    bool done = file.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    QDataStream stream(&file);
    stream << image.pixels;
    compare(
        state, 1.3,
        [&] {
            file.seek(0);
            return seconds([&] { stream >> fromLibrary.pixels; });
        },
        [&] {
            file.seek(16);
            return seconds([&] { done &= file.read(fromPlain.data(), image.bytes) == image.bytes; });
        });
    if (!done || std::memcmp(fromLibrary.data(), image.data(), static_cast<std::size_t>(image.bytes)) != 0)
        state.SkipWithError("the bytes differ");
}

} // namespace

BENCHMARK(write)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(501);
BENCHMARK(read)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(501);
