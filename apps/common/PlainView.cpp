#include "common/PlainView.h"

#include "common/SceneOverlay.h"

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

void PlainView::showShot(int, const Shot &shot)
{
    m_view.setAcquisitionImage(shot.picture);
    if (m_mask)
        m_view.setSegmentationImage(shot.foreground);
    m_view.setBlobs(shot.blobs);
}

cv::Mat PlainView::picture()
{
    m_view.updateDisplay();
    cv::Mat picture = m_view.getDisplay()->getImage(); // each update draws all of it anew
    drawScene(picture, m_scene);
    return picture;
}
