/// \file
/// The plane through a scene's elements, beside principal components of the same points in one matrix, and
/// with its printing beside writing the same text with fprintf.

#include "BenchFolder.h"
#include "Comparison.h"

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelDataContext.h>

#include <opencv2/core.hpp>
#include <opencv2/core/persistence.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <iostream>

namespace {

constexpr int verticesPerElement = 100;

/// Zones on a sloping floor, read from a file as every context is.
bool readScene(kelDataContext &scene, int vertices)
{
    cv::FileStorage file("scene.yml", cv::FileStorage::WRITE);
    cv::RNG random(1);
    file << "contextList"
         << "[";
    for (int element = 0; element < vertices / verticesPerElement; ++element) {
        file << "{"
             << "semantic"
             << "zone"
             << "shape"
             << "polygon"
             << "height" << 0 << "name"
             << "floor"
             << "isClosed" << 1 << "points"
             << "[";
        for (int i = 0; i < verticesPerElement; ++i) {
            const double x = random.uniform(-5000.0, 5000.0), y = random.uniform(0.0, 9000.0);
            file << "{"
                 << "x" << x << "y" << y << "z" << 0.1 * x - 0.05 * y + random.gaussian(5) << "}";
        }
        file << "]"
             << "}";
    }
    file << "]";
    file.release();
    return scene.read("scene.yml");
}

/// Standard output goes to a file while it lives.
class RedirectedOutput
{
public:
    explicit RedirectedOutput(const char *file) : m_previous(::dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        const int to = ::open(file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        ::dup2(to, STDOUT_FILENO);
        ::close(to);
    }
    ~RedirectedOutput()
    {
        std::fflush(stdout);
        ::dup2(m_previous, STDOUT_FILENO);
        ::close(m_previous);
    }
    RedirectedOutput(const RedirectedOutput &) = delete;
    RedirectedOutput &operator=(const RedirectedOutput &) = delete;

private:
    int m_previous;
};

void silent(benchmark::State &state)
{
    const BenchFolder folder(BenchFolder::InMemory);
    kelDataContext scene;
    bool done = readScene(scene, static_cast<int>(state.range(0)));
    cv::Mat points;
    for (const ContextElement &element : scene.getContext()) {
        for (const cv::Point3d &vertex : element.polygonVertices)
            points.push_back(cv::Mat(cv::Matx13d(vertex.x, vertex.y, vertex.z)));
    }
    kelAbstractDataCalibrationWithDepth camera;
    std::vector<double> plane;
    cv::PCA components;

    std::streambuf *output = std::cout.rdbuf(nullptr);
    compare(
        state, 0.9,
        [&] { return seconds([&] { plane = camera.computePlaneEquationFromContextualObjects(&scene); }); },
        [&] { return seconds([&] { components(points, cv::Mat(), cv::PCA::DATA_AS_ROW); }); });
    std::cout.rdbuf(output);

    const double *normal = components.eigenvectors.ptr<double>(2);
    const double cosine = plane[0] * normal[0] + plane[1] * normal[1] + plane[2] * normal[2];
    done &= std::abs(std::abs(cosine) - 1) < 1e-5;
    if (!done)
        state.SkipWithError("the planes differ");
}

void printing(benchmark::State &state)
{
    const BenchFolder folder(BenchFolder::InMemory);
    kelDataContext scene;
    const bool done = readScene(scene, static_cast<int>(state.range(0)));
    const std::list<ContextElement> elements = scene.getContext();
    kelAbstractDataCalibrationWithDepth camera;
    compare(
        state, 0.7,
        [&] {
            const RedirectedOutput output("library.txt");
            return seconds([&] { camera.computePlaneEquationFromContextualObjects(&scene); });
        },
        [&] {
            std::FILE *file = std::fopen("plain.txt", "w");
            const double time = seconds([&] {
                for (const ContextElement &e : elements) {
                    std::fprintf(file,
                                 "Semantic: %s\nName: %s\nShape: %s\nHeight: %g\nisClosed: %d\n"
                                 "No. of Vertices: %zu\nVertices Coordinates:\n",
                                 e.semantic.c_str(), e.name.c_str(), e.shape.c_str(), e.height,
                                 e.polygonIsClosed, e.polygonVertices.size());
                    for (const cv::Point3d &vertex : e.polygonVertices)
                        std::fprintf(file, "x: %g y: %g z: %g\n", vertex.x, vertex.y, vertex.z);
                }
                std::fflush(file);
            });
            std::fclose(file);
            return time;
        });

    QFile library("library.txt"), plain("plain.txt");
    if (!done || !library.open(QIODevice::ReadOnly) || !plain.open(QIODevice::ReadOnly)
        || library.readAll() != plain.readAll())
        state.SkipWithError("the texts differ");
}

} // namespace

BENCHMARK(silent)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(101);
BENCHMARK(printing)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(11);
