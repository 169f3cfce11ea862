#include "common/PictureSink.h"

#include "common/Program.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <vector>

namespace {
/// The picture without its fourth channel.
cv::Mat opaque(const cv::Mat &picture)
{
    if (picture.channels() != 4)
        return picture;
    cv::Mat bgr;
    cv::cvtColor(picture, bgr, cv::COLOR_BGRA2BGR);
    return bgr;
}
} // namespace

void writePng(const QString &path, const cv::Mat &picture)
{
    std::vector<uchar> bytes;
    cv::imencode(".png", opaque(picture), bytes);
    QSaveFile file(path);
    const qint64 size = static_cast<qint64>(bytes.size());
    if (!file.open(QIODevice::WriteOnly)
        || file.write(reinterpret_cast<const char *>(bytes.data()), size) != size || !file.flush()
        || !file.commit())
        throw Failure(QStringLiteral("%1 cannot be written: %2").arg(path, file.errorString()));
}

PictureSink::PictureSink(const QString &target, double framesPerSecond)
    : m_target(target), m_framesPerSecond(framesPerSecond),
      m_isVideo(target.endsWith(QLatin1String(".avi"), Qt::CaseInsensitive))
{
    const QString folder = m_isVideo ? QFileInfo(target).absolutePath() : target;
    if (!QDir().mkpath(folder))
        throw Failure(
            QStringLiteral("the folder %1 cannot be made; choose another for --render").arg(folder));
}

void PictureSink::add(quint32 frameNumber, const cv::Mat &picture)
{
    if (!m_isVideo) {
        const QString name = QStringLiteral("frame_%1.png").arg(frameNumber, 6, 10, QLatin1Char('0'));
        return writePng(QDir(m_target).filePath(name), picture);
    }
    if (!m_video.isOpened()
        && !m_video.open(QFile::encodeName(m_target).toStdString(),
                         cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), m_framesPerSecond, picture.size()))
        throw Failure(QStringLiteral("%1 cannot be written").arg(m_target));
    m_video.write(opaque(picture));
}
