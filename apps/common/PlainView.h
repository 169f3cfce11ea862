#ifndef APPS_COMMON_PLAINVIEW_H
#define APPS_COMMON_PLAINVIEW_H

/// \file
/// Frames in the base view.

#include "common/FrameView.h"
#include "common/Scene.h"

#include <kelCore/view/kelView.h>

/// The base view. Pictures that are drawn show the scene as well.
class PlainView : public FrameView
{
public:
    /// \param mask paints the foreground black.
    PlainView(const Scene &scene, bool mask) : m_scene(scene), m_mask(mask) { }

    QWidget *widget() override { return m_view.widget(); }
    void showShot(int index, const Shot &shot) override;
    cv::Mat picture() override;

private:
    Scene m_scene;
    bool m_mask;
    kelView m_view;
};

#endif
