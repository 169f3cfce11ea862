#ifndef TESTS_INTEGRATION_PROGRAMS_H
#define TESTS_INTEGRATION_PROGRAMS_H

/// \file
/// kelrecord and kelreplay, run as their users run them.

#include "support/TemporaryFolder.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <ostream>

/// What a program printed and how it ended.
struct Ended
{
    int code = -1;
    bool crashed = false;
    QString output;
    QString errors;

    /// Exactly one line on standard error.
    bool oneLine() const { return errors.count('\n') == 1 && errors.endsWith('\n'); }
};

inline std::ostream &operator<<(std::ostream &out, const Ended &run)
{
    return out << "code " << run.code << (run.crashed ? ", crashed" : "")
               << "\noutput: " << run.output.toStdString() << "\nerrors: " << run.errors.toStdString();
}

inline QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("QT_QPA_PLATFORM");
    return environment;
}

/// Starts a program without a display and with an empty standard input.
inline void start(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.setProcessEnvironment(withoutDisplay());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted()) << program.toStdString();
}

/// A program that has not ended by itself in time is killed, and counts as crashed.
inline Ended ended(QProcess &process, int seconds)
{
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(seconds * 1000)) {
        ADD_FAILURE() << process.program().toStdString() << ' ' << process.arguments().join(' ').toStdString()
                      << "\ndoes not end";
        process.kill();
        process.waitForFinished();
    }
    Ended result;
    result.code = process.exitCode();
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errors = QString::fromUtf8(process.readAllStandardError());
    return result;
}

inline Ended run(const QString &program, const QStringList &arguments, int seconds = 120)
{
    QProcess process;
    start(process, program, arguments);
    return ended(process, seconds);
}

inline Ended kelrecord(const QStringList &arguments) { return run(KELRECORD, arguments); }
inline Ended kelreplay(const QStringList &arguments) { return run(KELREPLAY, arguments); }

/// The value at a path of keys and indices, such as "objects.0.type".
inline QJsonValue at(QJsonValue value, const char *path)
{
    for (const QString &step : QString::fromLatin1(path).split('.'))
        value = value.isArray() ? value.toArray().at(step.toInt()) : value.toObject().value(step);
    return value;
}

inline QJsonObject parsed(const QString &json) { return QJsonDocument::fromJson(json.toUtf8()).object(); }

/// A command line of the shell, with the programs in $RECORD and $REPLAY.
inline Ended shell(const QString &command)
{
    return run("/bin/sh",
               {"-c", QStringLiteral("RECORD='%1' REPLAY='%2'; %3").arg(KELRECORD, KELREPLAY, command)});
}

/// A short video: a still, grained background, over which a bright square, 24 pixels wide, moves from frame
/// 15 on.
class Programs : public TemporaryFolder
{
protected:
    static constexpr int frameCount = 40;
    static constexpr int firstSquare = 15;

    void SetUp() override
    {
        makeVideo("video.avi", frameCount);
        ASSERT_TRUE(QFileInfo::exists("video.avi"));
    }

    static void makeVideo(const char *name, int frames)
    {
        cv::VideoWriter video(name, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, {160, 120});
        ASSERT_TRUE(video.isOpened());
        cv::Mat background(120, 160, CV_8UC3);
        cv::theRNG().state = 7;
        cv::randu(background, 90, 110);
        for (int i = 0; i < frames; ++i) {
            cv::Mat frame = background.clone();
            if (i >= firstSquare)
                cv::rectangle(frame, squareAt(i), cv::Scalar(240, 240, 240), cv::FILLED);
            video.write(frame);
        }
    }

    static cv::Rect squareAt(int frame) { return cv::Rect(4 + (frame - firstSquare) * 6 % 128, 40, 24, 24); }

    static QStringList recording(const QString &folder, const QStringList &more = {})
    {
        return QStringList{"video.avi",           "--out", folder,  "--min-area", "100",
                           "--min-dimension",     "8",     "--fps", "10",         "--start",
                           "2009-06-01T12:00:00Z"}
        + more;
    }

    /// The boxes of a frame, by kelreplay.
    static QList<cv::Rect> boxes(const QString &folder, int frame)
    {
        const Ended run = kelreplay({"frame", folder, QString::number(frame), "--json"});
        QList<cv::Rect> boxes;
        for (const QJsonValue object : at(parsed(run.output), "objects").toArray()) {
            const QJsonValue box = at(object, "properties.BoundingBox2D");
            boxes.append(cv::Rect(at(box, "x").toInt(), at(box, "y").toInt(), at(box, "width").toInt(),
                                  at(box, "height").toInt()));
        }
        return boxes;
    }
};

#endif
