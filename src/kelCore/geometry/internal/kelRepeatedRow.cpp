#include <kelCore/geometry/internal/kelRepeatedRow.h>

#include <opencv2/core.hpp>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

/// Gives mapped memory back when its last matrix goes. It allocates nothing itself.
class MappedMemory : public cv::MatAllocator
{
public:
    cv::UMatData *allocate(int, const int *, int, void *, std::size_t *, cv::AccessFlag,
                           cv::UMatUsageFlags) const override
    {
        return nullptr;
    }
    bool allocate(cv::UMatData *, cv::AccessFlag, cv::UMatUsageFlags) const override { return false; }
    void deallocate(cv::UMatData *data) const override
    {
        munmap(data->origdata, data->size);
        delete data;
    }

    /// Never destroyed: a matrix may outlive everything else.
    static const MappedMemory &instance()
    {
        static const MappedMemory &memory = *new MappedMemory;
        return memory;
    }
};

void fill(uchar *memory, std::size_t bytes, const cv::Mat &row)
{
    const std::size_t rowBytes = row.total() * row.elemSize();
    for (std::size_t offset = 0; offset < bytes; offset += rowBytes)
        std::memcpy(memory + offset, row.data, std::min(rowBytes, bytes - offset));
}

/// A file in memory that holds equal rows, or -1.
int fileOfRows(std::size_t bytes, const cv::Mat &row)
{
    const int file = memfd_create("kelRepeatedRow", MFD_CLOEXEC);
    if (file < 0)
        return -1;
    void *content = ftruncate(file, static_cast<off_t>(bytes)) == 0
        ? mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
        : MAP_FAILED;
    if (content == MAP_FAILED) {
        close(file);
        return -1;
    }
    fill(static_cast<uchar *>(content), bytes, row);
    munmap(content, bytes);
    return file;
}

/// Puts a private view of the file in place of each `piece` bytes of the memory.
bool coverWith(int file, uchar *memory, std::size_t bytes, std::size_t piece)
{
    for (std::size_t offset = 0; offset < bytes; offset += piece) {
        if (mmap(memory + offset, std::min(piece, bytes - offset), PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_FIXED, file, 0)
            == MAP_FAILED)
            return false;
    }
    return true;
}

} // namespace

cv::Mat kelRepeatedRow(int rows, const cv::Mat &row)
{
    CV_Assert(rows > 0 && !row.empty() && row.isContinuous());
    const std::size_t rowBytes = row.total() * row.elemSize();
    const std::size_t bytes = rowBytes * static_cast<std::size_t>(rows);

    // Asked for at once, so that the system refuses what it would refuse of an ordinary matrix.
    void *mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        CV_Error(cv::Error::StsNoMem, "no memory for " + std::to_string(rows) + " rows");
    auto *memory = static_cast<uchar *>(mapped);

    // Pieces hold whole rows and whole pages, and are few: a process may have 65,530 of them.
    const std::size_t smallest = std::lcm(rowBytes, static_cast<std::size_t>(sysconf(_SC_PAGESIZE)));
    const std::size_t piece = smallest * (bytes / smallest / 1000 + 1);
    const int file = piece < bytes ? fileOfRows(piece, row) : -1;
    if (file < 0) {
        fill(memory, bytes, row);
    } else {
        const bool covered = coverWith(file, memory, bytes, piece);
        close(file);
        if (!covered) {
            munmap(memory, bytes);
            CV_Error(cv::Error::StsNoMem, "no memory for " + std::to_string(rows) + " rows");
        }
    }

    cv::Mat result(rows, row.cols, row.type(), memory);
    result.u = new cv::UMatData(&MappedMemory::instance());
    result.u->data = result.u->origdata = memory;
    result.u->size = bytes;
    result.addref();
    return result;
}
