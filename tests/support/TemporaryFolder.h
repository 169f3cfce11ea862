#ifndef TESTS_SUPPORT_TEMPORARYFOLDER_H
#define TESTS_SUPPORT_TEMPORARYFOLDER_H

/// \file
/// A folder of its own for tests that write files.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// Each test runs in an empty working directory, which is removed with its content afterwards.
class TemporaryFolder : public testing::Test
{
protected:
    TemporaryFolder() : m_previous(QDir::currentPath())
    {
        EXPECT_TRUE(m_folder.isValid());
        QDir::setCurrent(m_folder.path());
    }
    ~TemporaryFolder() override { QDir::setCurrent(m_previous); }

    QString path(const QString &name) const { return m_folder.filePath(name); }

    static QByteArray content(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

private:
    QString m_previous;
    QTemporaryDir m_folder;
};

#endif
