#include <kelCore/geometry/kelDepthMap.h>

#include <kelCore/geometry/internal/kelRepeatedRow.h>
#include <kelCore/geometry/internal/kelSharedMatrix.h>

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdint>
#include <fstream>

namespace {

/// Bytes that a header may claim beyond what its file holds before memory for them is put off.
constexpr std::size_t believedBytes = 16 << 20;

const float leftOut = -1;

bool holdsDepth(const cv::Mat &map) { return map.dims <= 2 && map.type() == CV_32FC1; }

/// Bytes from here to the end of the file; 0 where it does not tell, as a pipe.
std::size_t bytesLeft(std::filebuf &file)
{
    const std::streamoff here = file.pubseekoff(0, std::ios::cur, std::ios::in);
    const std::streamoff end = file.pubseekoff(0, std::ios::end, std::ios::in);
    if (here < 0 || end < here)
        return 0;
    file.pubseekpos(here, std::ios::in);
    return static_cast<std::size_t>(end - here);
}

/// Puts what the file holds into `count` elements, and returns how many that were.
std::size_t readElements(std::istream &file, float *elements, std::size_t count)
{
    file.read(reinterpret_cast<char *>(elements), static_cast<std::streamsize>(count * sizeof(float)));
    const auto bytes = static_cast<std::size_t>(file.gcount());
    const std::size_t complete = bytes / sizeof(float);
    if (bytes % sizeof(float) != 0)
        elements[complete] = leftOut;
    return complete;
}

/// Copies the rows that both maps have, from column `first` on.
void keepColumns(const cv::Mat &from, cv::Mat &to, int first)
{
    const cv::Rect kept(first, 0, to.cols - first, std::min(from.rows, to.rows));
    if (!kept.empty()) // Copying nothing would release the target, which throws for a part.
        from(kept).copyTo(to(kept));
}

/// A map to read into, whose memory is taken at once: `map` itself where nobody else would see it.
cv::Mat mapToFill(const cv::Mat &map, int rows, int columns)
{
    if (map.rows == rows && !kelIsShared(map))
        return map;
    cv::Mat result(rows, map.cols, CV_32FC1);
    if (columns < map.cols) {
        result = cv::Scalar(0);
        keepColumns(map, result, columns);
    }
    return result;
}

/// A map to read into in which everything is left out already.
cv::Mat mapToFillLater(const cv::Mat &map, int rows, int columns)
{
    cv::Mat row = cv::Mat::zeros(1, map.cols, CV_32FC1);
    std::fill_n(row.ptr<float>(), columns, leftOut);
    cv::Mat result = kelRepeatedRow(rows, row);
    keepColumns(map, result, columns);
    return result;
}

kelGeometry::DepthFile read(std::ifstream &file, cv::Mat &map)
{
    std::int32_t size[2];
    if (!file.read(reinterpret_cast<char *>(size), sizeof size) || size[0] < 0)
        return kelGeometry::DepthFile::NoSize;
    if (!holdsDepth(map) || size[1] > map.cols)
        return kelGeometry::DepthFile::DoesNotFit;

    const int rows = size[0];
    const int columns = std::max(size[1], 0);
    const std::size_t bytes =
        sizeof(float) * static_cast<std::size_t>(rows) * static_cast<std::size_t>(map.cols);
    const bool believed = bytes <= believedBytes || bytes - believedBytes <= bytesLeft(*file.rdbuf());
    cv::Mat result = believed ? mapToFill(map, rows, columns) : mapToFillLater(map, rows, columns);

    // Rows that follow one another in memory are read as one.
    const bool atOnce = columns == result.cols && result.isContinuous();
    const int parts = columns == 0 ? 0 : atOnce ? std::min(rows, 1) : rows;
    const std::size_t count = atOnce ? result.total() : static_cast<std::size_t>(columns);
    std::size_t held = 0;
    for (int r = 0; r < parts && (believed || file); ++r) {
        float *elements = result.ptr<float>(r);
        const std::size_t complete = readElements(file, elements, count);
        if (believed)
            std::fill(elements + complete, elements + count, leftOut);
        held += complete;
    }
    map = result;
    return held == count * static_cast<std::size_t>(parts) ? kelGeometry::DepthFile::Read
                                                           : kelGeometry::DepthFile::Short;
}

} // namespace

kelGeometry::DepthFile kelGeometry::readDepthFile(const std::string &path, cv::Mat &map)
{
    std::ifstream file(path, std::ios::binary);
    return file.is_open() ? read(file, map) : DepthFile::NotOpened;
}
