#include "common/SceneOverlay.h"

#include "common/Scene.h"

#include <opencv2/imgproc.hpp>

#include <QString>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace {

const cv::Scalar gridColor(255, 255, 0, 255); // cyan
const cv::Scalar zoneColor(0, 0, 255, 255); // red
const cv::Scalar wallColor(0, 165, 255, 255); // orange
const cv::Scalar objectColor(0, 255, 255, 255); // yellow

/// The largest of 1, 2 and 5 times a power of ten that is not above `length`.
double roundLength(double length)
{
    const double power = std::pow(10, std::floor(std::log10(length)));
    return length >= 5 * power ? 5 * power : length >= 2 * power ? 2 * power : power;
}

/// Lines of the scene in a picture.
class Painter
{
public:
    Painter(const kelAbstractDataCalibration &camera, cv::Mat &picture)
        : m_camera(camera), m_picture(picture), m_projection(camera.getCalibration())
    { }

    /// A straight line of the scene, as far as it is in front of the camera.
    void line(const cv::Point3d &from, const cv::Point3d &to, const cv::Scalar &color, int width)
    {
        std::optional<cv::Point2d> last;
        const int pieces = 32;
        for (int i = 0; i <= pieces; ++i) {
            const auto point = project(from + (to - from) * (double(i) / pieces));
            if (point && last)
                cv::line(m_picture, toPixel(*last), toPixel(*point), color, width, cv::LINE_AA, fraction);
            last = point;
        }
    }

    void outline(const std::vector<cv::Point3d> &points, bool closed, const cv::Scalar &color)
    {
        for (size_t i = 1; i < points.size(); ++i)
            line(points[i - 1], points[i], color, 2);
        if (closed && points.size() > 2)
            line(points.back(), points.front(), color, 2);
    }

    /// Fills a polygon a little; left out when a corner is behind the camera.
    void fill(const std::vector<cv::Point3d> &points, const cv::Scalar &color)
    {
        std::vector<cv::Point> corners;
        for (const cv::Point3d &point : points) {
            const auto projected = project(point);
            if (!projected)
                return;
            corners.push_back(toPixel(*projected));
        }
        if (corners.size() < 3)
            return;
        cv::Mat filled = m_picture.clone();
        cv::fillPoly(filled, std::vector<std::vector<cv::Point>>{corners}, color, cv::LINE_AA, fraction);
        cv::addWeighted(filled, 0.3, m_picture, 0.7, 0, m_picture);
    }

    void label(const std::vector<cv::Point3d> &points, const std::string &text)
    {
        cv::Point3d middle;
        for (const cv::Point3d &point : points)
            middle += point * (1.0 / double(points.size()));
        if (const auto at = project(middle); at && !points.empty())
            write(text, cv::Point(cvRound(at->x), cvRound(at->y)));
    }

    void write(const std::string &text, const cv::Point &at)
    {
        const cv::Scalar color(255, 255, 255, 255), shadow(0, 0, 0, 255);
        cv::putText(m_picture, text, at, cv::FONT_HERSHEY_SIMPLEX, 0.5, shadow, 3, cv::LINE_AA);
        cv::putText(m_picture, text, at, cv::FONT_HERSHEY_SIMPLEX, 0.5, color, 1, cv::LINE_AA);
    }

    std::optional<cv::Point3d> ground(const cv::Point2d &pixel) const { return groundPoint(m_camera, pixel); }

    cv::Size size() const { return m_picture.size(); }

private:
    static constexpr int fraction = 4; ///< bits of a pixel's fraction

    /// Where a point is in the picture, or at most ten pictures beside it.
    std::optional<cv::Point2d> project(const cv::Point3d &point) const
    {
        if (!isInFront(m_projection, point))
            return std::nullopt;
        const cv::Point2d pixel = m_camera.worldToImage(point);
        const double limit = 10.0 * std::max(m_picture.cols, m_picture.rows);
        if (!(std::abs(pixel.x) < limit && std::abs(pixel.y) < limit))
            return std::nullopt;
        return pixel;
    }

    static cv::Point toPixel(const cv::Point2d &p)
    {
        const double scale = 1 << fraction;
        return cv::Point(cvRound(p.x * scale), cvRound(p.y * scale));
    }

    const kelAbstractDataCalibration &m_camera;
    cv::Mat &m_picture;
    cv::Mat m_projection;
};

void drawGrid(Painter &painter, const cv::Point3d &camera)
{
    // As far as the middle of the picture, or of its lower half, and then as far again.
    const cv::Size size = painter.size();
    std::optional<cv::Point3d> middle = painter.ground({size.width / 2.0, size.height / 2.0});
    if (!middle)
        middle = painter.ground({size.width / 2.0, size.height * 0.75});
    if (!middle)
        return;
    const double reach = std::hypot(middle->x - camera.x, middle->y - camera.y, camera.z);
    const double spacing = roundLength(reach / 8);
    const double half = std::ceil(2 * reach / spacing) * spacing;
    const double x0 = std::round(camera.x / spacing) * spacing;
    const double y0 = std::round(camera.y / spacing) * spacing;
    for (double d = -half; d <= half; d += spacing) {
        painter.line({x0 + d, y0 - half, 0}, {x0 + d, y0 + half, 0}, gridColor, 1);
        painter.line({x0 - half, y0 + d, 0}, {x0 + half, y0 + d, 0}, gridColor, 1);
    }
    painter.write("ground grid: " + QString::number(spacing).toStdString() + " units", {8, size.height - 10});
}

void drawElement(Painter &painter, const ContextElement &element)
{
    const cv::Scalar &color = element.semantic == "zone" ? zoneColor
        : element.semantic == "wall"                     ? wallColor
                                                         : objectColor;
    std::vector<cv::Point3d> points(element.polygonVertices.begin(), element.polygonVertices.end());
    if (element.shape == "cube")
        points.assign(element.cubeVertices.begin(), element.cubeVertices.end());
    if (element.shape == "circle" && element.radius > 0) {
        const int corners = 48;
        for (int i = 0; i < corners; ++i) {
            const double angle = 2 * CV_PI * i / corners;
            points.push_back(element.center
                             + element.radius * cv::Point3d(std::cos(angle), std::sin(angle), 0));
        }
    }
    const bool closed = element.shape == "circle"
        || (element.shape == "cube" ? element.cubeIsClosed : element.polygonIsClosed);

    if (element.semantic == "wall" && element.height > 0) { // a wall stands on its line
        const cv::Point3d up(0, 0, element.height);
        for (size_t i = 1; i < points.size(); ++i) {
            const std::vector<cv::Point3d> face{points[i - 1], points[i], points[i] + up, points[i - 1] + up};
            painter.fill(face, color);
            painter.outline(face, true, color);
        }
    } else {
        if (closed)
            painter.fill(points, color);
        painter.outline(points, closed, color);
    }
    painter.label(points, element.name);
}

} // namespace

void drawScene(cv::Mat &picture, const Scene &scene)
{
    if (!scene.camera || picture.empty())
        return;
    Painter painter(*scene.camera, picture);
    drawGrid(painter, scene.camera->getPosition());
    for (const ContextElement &element : scene.elements)
        drawElement(painter, element);
}
