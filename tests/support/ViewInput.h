#ifndef TESTS_SUPPORT_VIEWINPUT_H
#define TESTS_SUPPORT_VIEWINPUT_H

/// \file
/// Images and boxes to set in views.

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataPhysicalObject.h>

#include <opencv2/core.hpp>

#include <QSharedPointer>

#include <vector>

using Image = QSharedPointer<kelDataImage>;
using Blob = QSharedPointer<kelDataBlob>;
using PhysicalObject = QSharedPointer<kelDataPhysicalObject>;

inline Image image(const cv::Mat &pixels)
{
    Image result(new kelDataImage);
    result->setImage(pixels);
    return result;
}

inline Image frame(int width, int height, const cv::Scalar &bgr = cv::Scalar(10, 20, 30))
{
    return image(cv::Mat(height, width, CV_8UC3, bgr));
}

inline Image mask(int width, int height, int value)
{
    return image(cv::Mat(height, width, CV_8UC1, cv::Scalar(value)));
}

inline Image mask(int width, std::vector<uchar> bytes)
{
    return image(cv::Mat(bytes, true).reshape(1, static_cast<int>(bytes.size()) / width));
}

template <class Object> QSharedPointer<Object> withBox(int x, int y, int width, int height)
{
    QSharedPointer<Object> object(new Object);
    object->setBoundingBox2D(cv::Rect(x, y, width, height));
    return object;
}

inline Blob blob(int x, int y, int width, int height) { return withBox<kelDataBlob>(x, y, width, height); }

inline PhysicalObject physicalObject(int x, int y, int width, int height)
{
    return withBox<kelDataPhysicalObject>(x, y, width, height);
}

#endif
