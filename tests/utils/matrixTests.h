#ifndef TESTS_UTILS_MATRIXTESTS_H
#define TESTS_UTILS_MATRIXTESTS_H

/// \file
/// What the tests of the matrix utilities share: numbers, matrices, and where a result went.

#include "support/Matrices.h"

#include <gmock/gmock.h>
#include <opencv2/core.hpp>

#include <QByteArray>
#include <QDataStream>
#include <QDebug>
#include <QIODevice>
#include <QString>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

namespace matrixTests {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int halfFloat = 7;

/// Any elements; those of real depths are numbers.
inline cv::Mat randomMatrix(int rows, int columns, int type, double low = 0, double high = 100)
{
    static cv::RNG random(1);
    cv::Mat matrix(rows, columns, type);
    cv::Mat scalars = matrix.reshape(1);
    random.fill(scalars, cv::RNG::UNIFORM, low, high);
    return matrix;
}

template <class Item> QByteArray streamed(const Item &item)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << item;
    return bytes;
}

template <class Item> QString debugText(const Item &item)
{
    QString text;
    QDebug(&text) << item;
    return text;
}

/// Writes each message to standard error with its kind before it: "debug", "warning", "critical", "fatal" or
/// "info".
inline void printWithKind(QtMsgType kind, const QMessageLogContext &, const QString &text)
{
    static const char *const kinds[] = {"debug", "warning", "critical", "fatal", "info"};
    std::fprintf(stderr, "%s: %s\n", kinds[kind], qUtf8Printable(text));
}

/// The statement ends the process with this fatal message, and says nothing else.
template <class Statement> void expectFatal(const char *text, Statement statement)
{
    const auto withKinds = [&] {
        qInstallMessageHandler(printWithKind);
        statement();
    };
    EXPECT_EXIT(withKinds(), testing::KilledBySignal(SIGABRT),
                testing::StrEq("fatal: " + std::string(text) + "\n"));
}

} // namespace matrixTests

#endif
