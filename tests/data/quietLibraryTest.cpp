/// \file
/// What the libraries do not do: start threads and timers, take locks, read a configuration. They would need
/// others' functions for it, so the names that they leave to others to define are looked at.

#include <nubLog/nubLogger.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QStringList>

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

/// The file of a library of this process.
std::string fileOf(const char *library)
{
    struct Search
    {
        const char *library;
        std::string file;
    } search{library, {}};
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *data) {
            auto &wanted = *static_cast<Search *>(data);
            if (std::strstr(info->dlpi_name, wanted.library))
                wanted.file = info->dlpi_name;
            return 0;
        },
        &search);
    return search.file;
}

/// The dynamic symbols that a library does not define itself.
QStringList undefinedSymbols(const char *library)
{
    QFile file(QString::fromStdString(fileOf(library)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    const char *bytes = content.constData();
    const auto *header = reinterpret_cast<const ElfW(Ehdr) *>(bytes);
    const auto *sections = reinterpret_cast<const ElfW(Shdr) *>(bytes + header->e_shoff);
    QStringList names;
    for (int i = 0; i < header->e_shnum; ++i) {
        if (sections[i].sh_type != SHT_DYNSYM)
            continue;
        const auto *symbols = reinterpret_cast<const ElfW(Sym) *>(bytes + sections[i].sh_offset);
        const char *texts = bytes + sections[sections[i].sh_link].sh_offset;
        for (std::size_t s = 0; s < sections[i].sh_size / sizeof(ElfW(Sym)); ++s) {
            if (symbols[s].st_shndx == SHN_UNDEF)
                names.append(QString::fromLatin1(texts + symbols[s].st_name));
        }
    }
    return names;
}

/// The symbols that begin with one of these.
QStringList usesOf(const std::vector<const char *> &prefixes)
{
    QStringList found;
    for (const char *library : {"libkelCore.so", "libnubCore.so", "libnubLog.so"}) {
        const QStringList names = undefinedSymbols(library);
        EXPECT_GT(names.size(), 5) << library << " could not be read";
        for (const QString &name : names) {
            if (std::any_of(prefixes.begin(), prefixes.end(),
                            [&](const char *prefix) { return name.startsWith(QLatin1String(prefix)); }))
                found.append(QLatin1String(library) + QLatin1Char(' ') + name);
        }
    }
    return found;
}

} // namespace

TEST(quietLibraryTest, TheSymbolsAreReallyLookedAt)
{
    nubLogger::instance();
    EXPECT_FALSE(usesOf({"_ZN7QObject"}).isEmpty());
}

TEST(quietLibraryTest, StartsNoThread)
{
    EXPECT_EQ(usesOf({"pthread_create", "thrd_create", "_ZNSt6thread", "_ZN7QThreadC", "_ZN11QThreadPool",
                      "_ZN2cv13parallel_for_"}),
              QStringList());
}

TEST(quietLibraryTest, StartsNoTimer)
{
    EXPECT_EQ(usesOf({"_ZN6QTimer", "_ZN11QBasicTimer", "_ZN7QObject10startTimer", "timer_create",
                      "timerfd_create", "setitimer", "alarm"}),
              QStringList());
}

TEST(quietLibraryTest, TakesNoLock)
{
    EXPECT_EQ(usesOf({"pthread_mutex_", "pthread_rwlock_", "pthread_cond_", "sem_", "_ZN6QMutex",
                      "_ZN11QBasicMutex", "_ZN10QBasicMutex", "_ZN14QReadWriteLock", "_ZN10QSemaphore",
                      "_ZN14QWaitCondition"}),
              QStringList());
}

TEST(quietLibraryTest, ReadsNoConfiguration)
{
    EXPECT_EQ(usesOf({"_ZN9QSettings", "getenv", "secure_getenv", "_Z7qgetenv", "_Z12qEnvironment",
                      "_Z20qEnvironment", "_Z23qEnvironment", "_ZN14QStandardPaths"}),
              QStringList());
}
