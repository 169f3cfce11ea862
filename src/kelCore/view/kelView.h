#ifndef KELCORE_KELVIEW_H
#define KELCORE_KELVIEW_H

/// \file
/// Plain 2-D display of a camera frame.

#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractView.h>

#include <QList>
#include <QSharedPointer>

class kelDataBlob;
class kelDataImage;
class kelDataPhysicalObject;
class kelViewPrivate;

/// Shows a frame, its foreground mask over it, and rectangles around blobs (magenta) and physical objects
/// (cyan).
///
/// Per frame call `setAcquisitionImage`, `setSegmentationImage`, `setBlobs` and `setPhysicalObjects`, then
/// `updateDisplay` where a rendered copy is wanted. Each can be left out: the scene keeps what was set
/// before. Null pointers and images without pixels are ignored. All calls belong to the GUI thread.
class KELCORE_EXPORT kelView : public nubAbstractView
{
    Q_OBJECT

public:
    kelView();
    /// A new scene and widget that take over `other`'s frame and mask items: `other`'s scene no longer shows
    /// them, and what either view sets from then on appears in the copy's, for as long as the copy lives. The
    /// display image is shared.
    kelView(const kelView &other);
    ~kelView() override;
    /// Calls `copy`, which leaves what is shown: only the copy constructor takes items over.
    kelView &operator=(const kelView &other);

    /// The `QGraphicsView` to embed. The view owns it, and copes with a parent that deletes it first. Items of its
    /// scene may be deleted, and the scene be cleared: the setters make anew what they need.
    QWidget *widget() override;
    /// The picture rendered last; null until the first `updateDisplay`.
    QSharedPointer<kelDataImage> &getDisplay();

    /// Shows a frame and fits scene and widget to it: three channels in blue, green, red order, one, grey, or four,
    /// whose last is left out. 8 bits are shown as they are; of 16 bits, 65535 is white; of floats, 1 is white. What
    /// lies outside 0 to 1 is the nearer of the two, and no number is black.
    /// \throws cv::Exception for other numbers of channels and other depths; what was shown before stays.
    void setAcquisitionImage(QSharedPointer<kelDataImage> image);
    /// Paints the frame black where the mask, one-channel 8-bit, is 255; an image without pixels hides the
    /// mask.
    ///
    /// Rows of the mask are taken to start on 32-bit boundaries, so one whose width is no multiple of 4 is
    /// sheared: deliberate.
    void setSegmentationImage(QSharedPointer<kelDataImage> image);
    /// Replaces the rectangles around blobs.
    void setBlobs(QList<QSharedPointer<kelDataBlob>> blobs);
    /// Replaces the rectangles around physical objects.
    void setPhysicalObjects(QList<QSharedPointer<kelDataPhysicalObject>> objects);

    /// Renders the scene into a picture of the scene's size and hands it to the display image: four channels,
    /// in memory order blue, green, red, 255. The picture owns its pixels; a matrix that still holds the
    /// picture before keeps it as it is. While nothing was set yet, the display image stays empty.
    void updateDisplay();

protected:
    /// For a class with a private class of its own, derived from kelViewPrivate; takes `dd` over.
    explicit kelView(kelViewPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelView)
};

/// A new kelView; the caller owns it.
KELCORE_EXPORT nubAbstractView *createKelView();

#endif
