#include "common/PictureSink.h"

#include "common/Failure.h"
#include "common/RegularFile.h"

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
    mustBeWritableTarget(path);
    std::vector<uchar> bytes;
    cv::imencode(".png", opaque(picture), bytes);
    QSaveFile file(path);
    const qint64 size = static_cast<qint64>(bytes.size());
    if (!file.open(QIODevice::WriteOnly)
        || file.write(reinterpret_cast<const char *>(bytes.data()), size) != size || !file.flush()
        || !file.commit())
        throw Failure(
            QStringLiteral("%1 cannot be written: %2; is its disk full?").arg(path, file.errorString()));
}

PictureSink::PictureSink(const QString &target, double framesPerSecond)
    : m_target(QDir::cleanPath(target)), m_framesPerSecond(framesPerSecond),
      m_isVideo(m_target.endsWith(QLatin1String(".avi"), Qt::CaseInsensitive))
{
    const QString above = QFileInfo(m_target).path();
    const PathKind kind = kindOf(m_target);
    // Folders above the target are not made: after a slip in a long path nobody would find the pictures.
    if (!m_isVideo && kind == PathKind::Missing && kindOf(above) != PathKind::Folder)
        throw Failure(QStringLiteral("there is no folder %1 to make %2 in; make it first, or choose another "
                                     "place for --render")
                          .arg(above, QFileInfo(m_target).fileName()));
    if (!m_isVideo && kind != PathKind::Folder && !QDir().mkdir(m_target))
        throw Failure(
            QStringLiteral("the folder %1 cannot be made; choose another for --render").arg(m_target));
    mustBeWritableTarget(m_isVideo ? m_target : pathOf(0));
}

QString PictureSink::pathOf(quint32 frameNumber) const
{
    return QDir(m_target).filePath(QStringLiteral("frame_%1.png").arg(frameNumber, 6, 10, QLatin1Char('0')));
}

void PictureSink::add(quint32 frameNumber, const cv::Mat &picture)
{
    if (!m_isVideo)
        return writePng(pathOf(frameNumber), picture);
    if (!m_video.isOpened()
        && !m_video.open(QFile::encodeName(m_target).toStdString(),
                         cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), m_framesPerSecond, picture.size()))
        throw Failure(QStringLiteral("%1 cannot be written as a video of %2 by %3 pixels; draw PNG files, by "
                                     "a --render that does not end in .avi")
                          .arg(m_target, QString::number(picture.cols), QString::number(picture.rows)));
    m_video.write(opaque(picture));
}
