#ifndef TESTS_SUPPORT_VIEWPICTURE_H
#define TESTS_SUPPORT_VIEWPICTURE_H

/// \file
/// Pictures of scenes.

#include <opencv2/core.hpp>

#include <QGraphicsScene>
#include <QImage>
#include <QPainter>

/// The bytes in which two pictures differ; -1 when they are not of the same size and type.
inline int differentBytes(const cv::Mat &a, const cv::Mat &b)
{
    if (a.size() != b.size() || a.type() != b.type())
        return -1;
    return a.empty() ? 0 : cv::countNonZero(a.reshape(1) != b.reshape(1));
}

/// A scene rendered on black to its size in whole pixels.
inline cv::Mat rendered(QGraphicsScene &scene)
{
    const QRectF rect = scene.sceneRect();
    QImage picture(qRound(rect.width()), qRound(rect.height()), QImage::Format_RGB32);
    picture.fill(Qt::black);
    {
        QPainter painter(&picture);
        scene.render(&painter, QRectF(), QRectF(), Qt::KeepAspectRatio);
    }
    return cv::Mat(picture.height(), picture.width(), CV_8UC4, picture.bits(),
                   static_cast<size_t>(picture.bytesPerLine()))
        .clone();
}

#endif
