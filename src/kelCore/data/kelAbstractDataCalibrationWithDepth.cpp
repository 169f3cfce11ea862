#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth_p.h>
#include <kelCore/data/kelDataContext_p.h>
#include <kelCore/geometry/internal/kelSharedMatrix.h>

#include <nubCore/nubNotice.h>

#include <opencv2/core.hpp>

#include <QFile>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <unordered_map>
#include <utility>

namespace {

/// What the camera's own projections take from the intrinsic matrix.
struct Pinhole
{
    double fx, cx, fy, cy;

    explicit Pinhole(const cv::Mat &K)
    {
        CV_Assert(K.dims == 2 && K.type() == CV_64FC1 && K.rows >= 2 && K.cols >= 3);
        fx = K.ptr<double>(0)[0];
        cx = K.ptr<double>(0)[2];
        fy = K.ptr<double>(1)[1];
        cy = K.ptr<double>(1)[2];
    }
};

bool holdsDepth(const cv::Mat &map) { return map.dims <= 2 && map.type() == CV_32FC1; }

/// Fills `count` elements from the file, and those that the file does not hold with -1.
void readElements(std::istream &file, float *elements, std::size_t count)
{
    file.read(reinterpret_cast<char *>(elements), static_cast<std::streamsize>(count * sizeof(float)));
    const std::size_t complete = static_cast<std::size_t>(file.gcount()) / sizeof(float);
    std::fill(elements + complete, elements + count, -1.0f);
}

/// A map of that many rows to read into: `map` itself where nobody else would see it.
cv::Mat mapToFill(const cv::Mat &map, int rows, int columnsFilled)
{
    if (map.rows == rows && !kelIsShared(map))
        return map;
    cv::Mat result(rows, map.cols, CV_32FC1);
    if (columnsFilled < map.cols) {
        result = cv::Scalar(0);
        const cv::Range kept(0, std::min(rows, map.rows));
        if (!kept.empty()) // No rows would be copied by releasing the target, which throws for a part.
            map.rowRange(kept).copyTo(result.rowRange(kept));
    }
    return result;
}

void readDepth(std::istream &file, cv::Mat &map)
{
    std::int32_t header[2];
    if (!file.read(reinterpret_cast<char *>(header), sizeof header))
        header[0] = -1;
    const int rows = header[0];
    CV_Assert(rows >= 0);
    if (!holdsDepth(map) || header[1] > map.cols)
        return;

    const int columns = std::max(header[1], 0);
    cv::Mat result = mapToFill(map, rows, columns);
    if (columns == result.cols && result.isContinuous()) {
        readElements(file, result.ptr<float>(), result.total());
    } else {
        for (int r = 0; r < rows; ++r)
            readElements(file, result.ptr<float>(r), static_cast<std::size_t>(columns));
    }
    map = result;
}

/// How often each name occurs in a list separated by commas and blanks.
std::unordered_map<std::string, int> countNames(const std::string &list)
{
    std::unordered_map<std::string, int> counts;
    const char separators[] = ", ";
    for (std::size_t start = 0; start < list.size();) {
        const std::size_t end = std::min(list.find_first_of(separators, start), list.size());
        if (end > start)
            ++counts[list.substr(start, end - start)];
        start = end + 1;
    }
    return counts;
}

/// Leaves out elements by name: each name of the list takes the first that has it and was not taken yet.
class Forbidden
{
public:
    explicit Forbidden(const std::string &list) : m_left(countNames(list)) { }

    bool takes(const ContextElement &element)
    {
        if (m_left.empty())
            return false;
        const auto name = m_left.find(element.name);
        if (name == m_left.end() || name->second == 0)
            return false;
        --name->second;
        return true;
    }

private:
    std::unordered_map<std::string, int> m_left;
};

/// Direction of least scatter. Products and sums are rounded to floats one by one, as 3 x 1 times 1 x 3
/// matrix products added to a matrix of floats are.
cv::Point3d normalOf(const std::vector<const ContextElement *> &elements, const cv::Point3d &mean)
{
    float xx = 0, xy = 0, xz = 0, yy = 0, yz = 0, zz = 0;
    for (const ContextElement *element : elements) {
        for (const cv::Point3d &vertex : element->polygonVertices) {
            const float x = static_cast<float>(vertex.x - mean.x);
            const float y = static_cast<float>(vertex.y - mean.y);
            const float z = static_cast<float>(vertex.z - mean.z);
            xx += x * x;
            xy += x * y;
            xz += x * z;
            yy += y * y;
            yz += y * z;
            zz += z * z;
        }
    }
    const cv::Matx33f scatter(xx, xy, xz, xy, yy, yz, xz, yz, zz);
    cv::Mat values, vectors;
    cv::eigen(scatter, values, vectors);
    const float *least = vectors.ptr<float>(2);
    return cv::Point3d(least[0], least[1], least[2]);
}

double dot(const std::vector<double> &normal, const cv::Point3d &p)
{
    return normal[0] * p.x + normal[1] * p.y + normal[2] * p.z;
}

double squaredNorm(const std::vector<double> &normal)
{
    return normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2];
}

} // namespace

kelAbstractDataCalibrationWithDepth::kelAbstractDataCalibrationWithDepth()
    : kelAbstractDataCalibrationWithDepth(*new kelAbstractDataCalibrationWithDepthPrivate)
{ }

kelAbstractDataCalibrationWithDepth::kelAbstractDataCalibrationWithDepth(
    const kelAbstractDataCalibrationWithDepth &other)
    : kelAbstractDataCalibrationWithDepth(*new kelAbstractDataCalibrationWithDepthPrivate(*other.d_func()),
                                          other.parent())
{ }

kelAbstractDataCalibrationWithDepth::kelAbstractDataCalibrationWithDepth(
    kelAbstractDataCalibrationWithDepthPrivate &dd, QObject *parent)
    : kelAbstractDataCalibration(dd, parent)
{ }

kelAbstractDataCalibrationWithDepth::~kelAbstractDataCalibrationWithDepth() = default;

kelAbstractDataCalibrationWithDepth &
kelAbstractDataCalibrationWithDepth::operator=(const kelAbstractDataCalibrationWithDepth &other)
{
    copy(static_cast<const kelAbstractDataCalibration &>(other));
    return *this;
}

kelAbstractDataCalibrationWithDepth *kelAbstractDataCalibrationWithDepth::clone()
{
    return new kelAbstractDataCalibrationWithDepth(*this);
}

QString kelAbstractDataCalibrationWithDepth::identifier() const
{
    return QStringLiteral("kelAbstractDataCalibrationWithDepth");
}

void kelAbstractDataCalibrationWithDepth::copy(const kelAbstractDataCalibration &other)
{
    kelAbstractDataCalibration::copy(other);
    if (const auto *depth = nub::sameKindOrWarn<kelAbstractDataCalibrationWithDepth>(*this, other))
        setDepthInformation(depth->getDepthInformation());
}

cv::Point3d kelAbstractDataCalibrationWithDepth::imageToWorld(const cv::Point2d &pixel)
{
    const double Z = depthVal(pixel.x, pixel.y);
    if (Z == 0.0)
        return cv::Point3d(0, 0, 0);
    const Pinhole k(d_func()->intrinsicMatrix);
    return cv::Point3d((pixel.x - k.cx) * (Z / k.fx), (pixel.y - k.cy) * (Z / k.fy), Z);
}

cv::Point2d kelAbstractDataCalibrationWithDepth::worldToImage(const cv::Point3d &point)
{
    const Pinhole k(d_func()->intrinsicMatrix);
    if (point.z == 0.0)
        return cv::Point2d(k.cx, k.cy);
    return cv::Point2d(k.fx * point.x / point.z + k.cx, k.fy * point.y / point.z + k.cy);
}

void kelAbstractDataCalibrationWithDepth::setDepthInformation(const cv::Mat &depth)
{
    d_func()->depthInformation = depth;
}

void kelAbstractDataCalibrationWithDepth::setDepthInformation(const QString &fileName)
{
    std::ifstream file(QFile::encodeName(fileName).constData(), std::ios::binary);
    if (file.is_open())
        readDepth(file, d_func()->depthInformation);
    std::cout << "Depth RAW file read successfully" << std::endl;
}

const cv::Mat &kelAbstractDataCalibrationWithDepth::getDepthInformation() const
{
    return d_func()->depthInformation;
}

float kelAbstractDataCalibrationWithDepth::depthVal(double u, double v)
{
    const cv::Mat &map = d_func()->depthInformation;
    return holdsDepth(map) ? map.ptr<float>(static_cast<int>(v))[static_cast<int>(u)] : 0.0f;
}

void kelAbstractDataCalibrationWithDepth::setListContextObjectsForbiddenInPlanComputation(std::string list)
{
    d_func()->contextObjectsForbidden = std::move(list);
}

std::string kelAbstractDataCalibrationWithDepth::getListContextObjectsForbiddenInPlanComputation()
{
    return d_func()->contextObjectsForbidden;
}

double kelAbstractDataCalibrationWithDepth::computePointDistanceToPlane(cv::Point3d p,
                                                                        std::vector<double> &plane)
{
    if (plane.size() < 3)
        return 0.0;
    const double d = plane.at(3); // Three coefficients pass the test above, and throw here.
    return std::abs(dot(plane, p) + d) / std::sqrt(squaredNorm(plane));
}

double kelAbstractDataCalibrationWithDepth::vectorMagnitude(cv::Point3d v)
{
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

cv::Point3d kelAbstractDataCalibrationWithDepth::pointProjectionOntoPlane(cv::Point3d p,
                                                                          std::vector<double> &plane)
{
    const double t = -(dot(plane, p) + plane[3]) / squaredNorm(plane);
    return cv::Point3d(p.x + t * plane[0], p.y + t * plane[1], p.z + t * plane[2]);
}

std::vector<double>
kelAbstractDataCalibrationWithDepth::computePlaneEquationFromContextualObjects(const kelDataContext *context)
{
    if (!context)
        return {};
    Forbidden forbidden(d_func()->contextObjectsForbidden);
    std::vector<const ContextElement *> elements;
    cv::Point3d sum;
    double count = 0;
    for (const ContextElement &element : kelDataContextPrivate::elementsOf(*context)) {
        if (forbidden.takes(element))
            continue;
        element.displayObject();
        elements.push_back(&element);
        for (const cv::Point3d &vertex : element.polygonVertices) {
            sum += vertex;
            ++count;
        }
    }
    if (elements.empty())
        return {};

    const cv::Point3d mean(sum.x / count, sum.y / count, sum.z / count);
    const cv::Point3d n = normalOf(elements, mean);
    return {n.x, n.y, n.z, -(n.x * mean.x + n.y * mean.y + n.z * mean.z)};
}
