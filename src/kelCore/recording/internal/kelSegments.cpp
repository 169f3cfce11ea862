#include <kelCore/recording/internal/kelSegments.h>

#include <kelCore/recording/internal/kelByteSource.h>

#include <QDir>
#include <QFile>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>

#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace kelDataFlow;

constexpr std::string_view removedEnding = ".removed";

/// Calls `found(const dirent &)` for each entry of the folder.
template <class Found> void forEachEntry(int folder, const Found &found)
{
    const int again = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR *const entries = again >= 0 ? ::fdopendir(again) : nullptr;
    if (!entries) {
        const FileDescriptor closing(again);
        return;
    }
    while (const dirent *const entry = ::readdir(entries))
        found(*entry);
    ::closedir(entries);
}

/// The number that makes this name; 0 where there is none.
qint64 numberOf(std::string_view name)
{
    qint64 number = 0;
    std::from_chars(name.data(), name.data() + name.size(), number);
    return number > 0 && segmentName(number) == name ? number : 0;
}

bool isEmpty(int folder)
{
    int entries = 0;
    forEachEntry(folder, [&entries](const dirent &) { ++entries; });
    return entries == 2; // itself and the one above
}

bool exists(int folder, const std::string &name)
{
    return ::faccessat(folder, name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

/// A link goes, and what it leads to stays.
bool removeTree(const QString &path)
{
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(path).toStdString(), error);
    errno = error.value();
    return !error;
}

} // namespace

std::string kelDataFlow::segmentName(qint64 number)
{
    char name[32];
    std::snprintf(name, sizeof name, "%06lld", static_cast<long long>(number));
    return name;
}

bool kelDataFlow::holdsRecording(int folder)
{
    for (const std::string &name : {documentName, recordsName})
        if (exists(folder, name) || exists(folder, name + compressedEnding))
            return true;
    return false;
}

bool kelDataFlow::isCompressed(int folder)
{
    for (const std::string &name : {documentName, recordsName})
        if (!exists(folder, name) && exists(folder, name + compressedEnding))
            return true;
    return false;
}

std::vector<qint64> kelDataFlow::segmentsIn(int folder)
{
    std::vector<qint64> numbers;
    forEachEntry(folder, [&numbers](const dirent &entry) {
        if (const qint64 number = numberOf(entry.d_name); number > 0)
            numbers.push_back(number);
    });
    const auto isNone = [folder](qint64 number) {
        const FileDescriptor segment = openFolder(folder, segmentName(number));
        return !segment || (!holdsRecording(segment.get()) && !isEmpty(segment.get()));
    };
    numbers.erase(std::remove_if(numbers.begin(), numbers.end(), isNone), numbers.end());
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

kelDataFlow::FileDescriptor kelDataFlow::openFolder(const QString &path)
{
    return openFolder(AT_FDCWD, QFile::encodeName(path).toStdString());
}

kelDataFlow::FileDescriptor kelDataFlow::openFolder(int parent, const std::string &name)
{
    return FileDescriptor(::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

qint64 kelDataFlow::bytesOfSegment(int segment)
{
    qint64 bytes = 0;
    forEachEntry(segment, [segment, &bytes](const dirent &entry) {
        struct stat status = {};
        if (::fstatat(segment, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode))
            bytes += status.st_size;
    });
    return bytes;
}

kelResult kelDataFlow::removeSegment(const QString &path, int run, qint64 number)
{
    const std::string name = segmentName(number);
    const std::string hidden = "." + name + std::string(removedEnding);
    const QString where = QDir(path).filePath(QString::fromStdString(name));
    const QString left = QDir(path).filePath(QString::fromStdString(hidden));
    removeTree(left);
    if (::renameat(run, name.c_str(), run, hidden.c_str()) != 0 && errno != ENOENT)
        return kelResult::failure(QStringLiteral("cannot be removed: %1").arg(systemError()), where);
    if (!removeTree(left))
        return kelResult::failure(QStringLiteral("cannot be removed: %1").arg(systemError()), left);
    return kelResult();
}

void kelDataFlow::removeLeftOverSegments(const QString &path, int run)
{
    std::vector<std::string> names;
    forEachEntry(run, [&names](const dirent &entry) {
        const std::string_view name = entry.d_name;
        const size_t length = name.size() - std::min(name.size(), removedEnding.size() + 1);
        if (length > 0 && name[0] == '.' && name.substr(length + 1) == removedEnding
            && numberOf(name.substr(1, length)) > 0)
            names.emplace_back(name);
    });
    for (const std::string &name : names)
        removeTree(QDir(path).filePath(QString::fromStdString(name)));
}
