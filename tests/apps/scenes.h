#ifndef TESTS_APPS_SCENES_H
#define TESTS_APPS_SCENES_H

/// \file
/// Cameras, contexts, time stamps and keys that the tests of the programs share.

#include "common/Scene.h"

#include <kelCore/data/CSynchronizer.h>

#include <opencv2/core.hpp>

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <memory>
#include <string>
#include <vector>

/// A camera of that intrinsic and extrinsic (world to camera) matrix.
inline Scene sceneWith(const cv::Mat &intrinsic, const cv::Mat &extrinsic)
{
    auto camera = std::make_shared<kelAbstractDataCalibration>();
    camera->setIntrinsicMatrix(intrinsic);
    camera->setExtrinsicMatrix(extrinsic);
    Scene scene;
    scene.camera = camera;
    return scene;
}

inline cv::Mat pinhole() { return (cv::Mat_<double>(3, 4) << 100, 0, 80, 0, 0, 100, 60, 0, 0, 0, 1, 0); }

/// A camera 2 m above the ground that looks along the world's Y axis: X to the right, horizon in row 60.
inline Scene levelScene(const cv::Mat &intrinsic = pinhole())
{
    return sceneWith(intrinsic,
                     (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, 0, 0, -1, 2000, 0, 1, 0, 0, 0, 0, 0, 1));
}

/// A camera 10 m above the ground that looks straight down: X along columns, Y against rows.
inline Scene sceneFromAbove()
{
    return sceneWith(pinhole(),
                     (cv::Mat_<double>(4, 4) << 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 10000, 0, 0, 0, 1));
}

inline ContextElement zone(const std::string &name, const std::list<cv::Point3d> &corners)
{
    ContextElement element;
    element.semantic = "zone";
    element.shape = "polygon";
    element.name = name;
    element.polygonVertices = corners;
    return element;
}

/// The time of a frame at ten frames per second.
inline CSynchronizer stampOf(int frame)
{
    CSynchronizer stamp;
    stamp.setFrameNumber(static_cast<unsigned>(frame));
    stamp.setDateTime(QDateTime(QDate(2009, 6, 1), QTime(12, 0), Qt::UTC).addMSecs(frame * 100));
    return stamp;
}

/// A press of a key on the widget.
inline void press(QWidget &widget, int key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

#endif
