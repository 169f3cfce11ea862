#include <kelCore/view/internal/kelConvexEnvelope.h>

#include <cmath>

namespace {

/// Side of the line through `a` and `b` on which `p` lies; 0 on the line.
double side(const cv::Point2d &a, const cv::Point2d &b, const cv::Point2d &p)
{
    return (b.y - a.y) * p.x + (a.x - b.x) * p.y + (b.x * a.y - a.x * b.y);
}

} // namespace

std::vector<cv::Point> kelConvexEnvelope(std::list<cv::Point> points)
{
    if (points.empty())
        return {};
    points.sort([](const cv::Point &p, const cv::Point &q) { return p.y < q.y; });
    const cv::Point pivot = points.front();
    points.pop_front();
    const auto angle = [&pivot](const cv::Point2d &p) { return std::atan2(p.y - pivot.y, p.x - pivot.x); };
    points.sort([&angle](const cv::Point &p, const cv::Point &q) { return angle(p) > angle(q); });
    points.push_back(pivot);

    std::vector<cv::Point> envelope{pivot};
    for (const cv::Point &point : points) {
        envelope.push_back(point);
        // The last point but one goes for as long as the last falls back behind the edge that leads to it.
        for (std::size_t n = envelope.size(); n >= 4; --n) {
            const cv::Point2d a = envelope[n - 3], b = envelope[n - 2];
            if (side(a, b, envelope[n - 4]) * side(a, b, point) > 0)
                break;
            envelope.erase(envelope.end() - 2);
        }
    }
    return envelope;
}
