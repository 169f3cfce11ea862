#ifndef APPS_COMMON_FRAMEVIEW_H
#define APPS_COMMON_FRAMEVIEW_H

/// \file
/// What the programs show and draw frames in.

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <QList>
#include <QSharedPointer>

#include <vector>

class CSynchronizer;
class QWidget;
class kelDataBlob;
class kelDataImage;

/// What is known of one frame.
struct Shot
{
    QSharedPointer<kelDataImage> picture; ///< colour
    QSharedPointer<kelDataImage> foreground; ///< a mask of 0 and 255; null when it is not known
    QList<QSharedPointer<kelDataBlob>> blobs;
};

/// A frame with what was found in it: a widget to show, a picture to draw, or both.
///
/// Every frame of the run is added in its order, up to the one that is shown: some views follow what they see.
class FrameView
{
public:
    virtual ~FrameView() = default;

    virtual QWidget *widget() = 0;

    /// Adds the next frame of the run: when it was taken, and the boxes of its blobs. \return its index.
    int add(const CSynchronizer &stamp, const std::vector<cv::Rect> &boxes)
    {
        follow(stamp, boxes);
        return m_frameCount++;
    }
    /// How many frames were added.
    int frameCount() const { return m_frameCount; }

    /// Shows a frame that was added.
    virtual void showShot(int index, const Shot &shot) = 0;
    /// Frames per second, where the view shows them: from the next shot on.
    virtual void setFrameRate(int) { }
    /// The shot that is shown, as a picture of four channels in blue, green, red order.
    virtual cv::Mat picture() = 0;

protected:
    virtual void follow(const CSynchronizer &, const std::vector<cv::Rect> &) { }

private:
    int m_frameCount = 0;
};

#endif
