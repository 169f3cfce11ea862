#include <kelCore/utils/internal/kelValueRange.h>

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstring>

namespace {

/// Widens the range to the values, not-a-numbers aside. Several packs of values are compared at a time, each
/// with extremes of its own: one after the other, comparisons would wait for one another.
template <class T> void widen(kelValueRange &range, const uchar *data, std::size_t count)
{
    typedef T Pack __attribute__((vector_size(16)));
    constexpr std::size_t packs = 4;
    constexpr std::size_t lanes = sizeof(Pack) / sizeof(T);
    using Limits = std::numeric_limits<T>;
    T least = Limits::has_infinity ? Limits::infinity() : Limits::max();
    T greatest = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    Pack low[packs], high[packs];
    for (std::size_t p = 0; p < packs; ++p) {
        low[p] = Pack{} + least;
        high[p] = Pack{} + greatest;
    }

    const T *values = reinterpret_cast<const T *>(data);
    const T *const end = values + count;
    for (std::size_t rounds = count / (packs * lanes); rounds > 0; --rounds, values += packs * lanes) {
        for (std::size_t p = 0; p < packs; ++p) {
            Pack pack;
            std::memcpy(&pack, values + p * lanes, sizeof pack);
            low[p] = pack < low[p] ? pack : low[p];
            high[p] = pack > high[p] ? pack : high[p];
        }
    }
    for (; values < end; ++values) {
        least = *values < least ? *values : least;
        greatest = *values > greatest ? *values : greatest;
    }
    for (std::size_t p = 0; p < packs; ++p) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            least = std::min<T>(least, low[p][lane]);
            greatest = std::max<T>(greatest, high[p][lane]);
        }
    }
    range.min = std::min(range.min, static_cast<double>(least));
    range.max = std::max(range.max, static_cast<double>(greatest));
}

} // namespace

kelValueRange kelValueRangeOf(const cv::Mat &matrix)
{
    using Widen = void (*)(kelValueRange &, const uchar *, std::size_t);
    const Widen byDepth[] = {widen<uchar>, widen<schar>, widen<ushort>, widen<short>,
                             widen<int>,   widen<float>, widen<double>};
    kelValueRange range;
    if (matrix.empty())
        return range;
    CV_Assert(matrix.depth() <= CV_64F);
    const cv::Mat *matrices[] = {&matrix, nullptr};
    uchar *plane = nullptr;
    cv::NAryMatIterator planes(matrices, &plane);
    for (std::size_t i = 0; i < planes.nplanes; ++i, ++planes)
        byDepth[matrix.depth()](range, plane, planes.size * static_cast<std::size_t>(matrix.channels()));
    return range;
}
