/// \file
/// Pixels and points one by one, beside projecting all points at once and beside copying the bytes of a map.

#include "Comparison.h"

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>

#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>

#include <cstring>
#include <vector>

namespace {

constexpr int rows = 480;
constexpr int columns = 640;

/// A camera 3 m above the ground that looks ahead and 20 degrees down.
struct Camera
{
    cv::Mat K = (cv::Mat_<double>(3, 4) << 525, 0, 319.5, 0, /**/ 0, 530, 239.5, 0, /**/ 0, 0, 1, 0);
    cv::Mat rotation = (cv::Mat_<double>(3, 1) << CV_PI / 2 + 0.35, 0.02, 0.01);
    cv::Mat translation = (cv::Mat_<double>(3, 1) << 0.1, 2.8, 1);
    kelAbstractDataCalibrationWithDepth calibration;

    Camera()
    {
        cv::Mat E = cv::Mat::eye(4, 4, CV_64F);
        cv::Mat R;
        cv::Rodrigues(rotation, R);
        R.copyTo(E(cv::Rect(0, 0, 3, 3)));
        translation.copyTo(E(cv::Rect(3, 0, 1, 3)));
        calibration.setIntrinsicMatrix(K);
        calibration.setExtrinsicMatrix(E);
        cv::Mat depth(rows, columns, CV_32F);
        cv::RNG(1).fill(depth, cv::RNG::UNIFORM, 0.5, 9);
        calibration.setDepthInformation(depth);
    }
};

std::vector<cv::Point3d> groundPoints()
{
    cv::RNG random(1);
    std::vector<cv::Point3d> points(10000);
    for (cv::Point3d &point : points)
        point = cv::Point3d(random.uniform(-5.0, 5.0), random.uniform(3.0, 20.0), random.uniform(0.0, 2.0));
    return points;
}

template <bool toImage> void world(benchmark::State &state)
{
    const Camera camera;
    const kelAbstractDataCalibration &calibration = camera.calibration;
    const std::vector<cv::Point3d> points = groundPoints();
    const cv::Mat K = camera.K.colRange(0, 3).clone();
    std::vector<cv::Point2d> projected, pixels(points.size());
    std::vector<cv::Point3d> found(points.size());
    const auto projectAll = [&] {
        cv::projectPoints(points, camera.rotation, camera.translation, K, cv::noArray(), projected);
    };
    projectAll();
    compare(
        state, 0.7,
        [&] {
            return seconds([count = points.size(), &calibration, from = points.data(),
                            seen = projected.data(), toPixels = pixels.data(), toPoints = found.data()] {
                for (std::size_t i = 0; i < count; ++i) {
                    if constexpr (toImage)
                        toPixels[i] = calibration.worldToImage(from[i]);
                    else
                        toPoints[i] = calibration.imageToWorld(seen[i], from[i].z);
                }
            });
        },
        [&] { return seconds(projectAll); });
    const double error =
        toImage ? cv::norm(pixels, projected, cv::NORM_INF) : cv::norm(found, points, cv::NORM_INF);
    if (!(error < 1e-6))
        state.SkipWithError("the projections differ");
}

/// Over all pixels of a map; what comes out is as large as what is copied.
void camera(benchmark::State &state, bool toImage)
{
    Camera camera;
    kelAbstractDataCalibrationWithDepth &calibration = camera.calibration;
    std::vector<cv::Point3d> points(rows * columns);
    std::vector<cv::Point2d> pixels(rows * columns);
    const auto backProject = [&] {
        auto point = points.begin();
        for (int v = 0; v < rows; ++v) {
            for (int u = 0; u < columns; ++u)
                *point++ = calibration.imageToWorld(cv::Point2d(u, v));
        }
    };
    const auto project = [&] {
        for (std::size_t i = 0; i < points.size(); ++i)
            pixels[i] = calibration.worldToImage(points[i]);
    };
    backProject();
    std::vector<cv::Point3d> pointsCopy(points.size());
    std::vector<cv::Point2d> pixelsCopy(pixels.size());
    const auto copy = [](const auto &from, auto &to) {
        std::memcpy(to.data(), from.data(), from.size() * sizeof from[0]);
        benchmark::ClobberMemory();
    };
    compare(
        state, 13,
        [&] {
            if (toImage)
                return seconds(project);
            return seconds(backProject);
        },
        [&] {
            if (toImage)
                return seconds([&] { copy(pixels, pixelsCopy); });
            return seconds([&] { copy(points, pointsCopy); });
        });
}

} // namespace

BENCHMARK_TEMPLATE(world, true)
    ->Name("worldToImage")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(251);
BENCHMARK_TEMPLATE(world, false)
    ->Name("imageToWorld")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(251);
BENCHMARK_CAPTURE(camera, imageToWorld, false)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(101);
BENCHMARK_CAPTURE(camera, worldToImage, true)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(101);
