#ifndef BENCH_BENCHFOLDER_H
#define BENCH_BENCHFOLDER_H

/// \file
/// Where the benchmarks write.

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

/// An empty working directory for as long as it lives: in memory, or on the disk that the program was started
/// on.
class BenchFolder
{
public:
    enum Place
    {
        InMemory,
        OnDisk
    };

    explicit BenchFolder(Place place)
        : m_previous(QDir::currentPath()), m_folder(parentFolder(place) + QStringLiteral("/kelBench-XXXXXX"))
    {
        QDir::setCurrent(m_folder.path());
    }
    ~BenchFolder() { QDir::setCurrent(m_previous); }
    BenchFolder(const BenchFolder &) = delete;
    BenchFolder &operator=(const BenchFolder &) = delete;

    bool isValid() const { return m_folder.isValid(); }

private:
    static QString parentFolder(Place place)
    {
        const QString memory = QStringLiteral("/dev/shm");
        return place == InMemory && QFileInfo(memory).isWritable() ? memory : QDir::currentPath();
    }

    QString m_previous;
    QTemporaryDir m_folder;
};

#endif
