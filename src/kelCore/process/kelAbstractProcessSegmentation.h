#ifndef KELCORE_KELABSTRACTPROCESSSEGMENTATION_H
#define KELCORE_KELABSTRACTPROCESSSEGMENTATION_H

/// \file
/// Stage interface: telling foreground from background.

#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QSharedPointer>

class kelAbstractProcessSegmentationPrivate;

/// Turns a colour frame into a foreground mask.
///
/// Call `setAcquisitionImage`, then `segment`, per frame and in the order of the frames: most stages learn
/// what the background looks like. After it `getSegmentationImage` holds a one-channel 8-bit mask of the
/// frame's size, 255 where there is foreground and 0 elsewhere.
class KELCORE_EXPORT kelAbstractProcessSegmentation : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessSegmentation();
    /// Shares both images.
    kelAbstractProcessSegmentation(const kelAbstractProcessSegmentation &other);
    ~kelAbstractProcessSegmentation() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessSegmentation &operator=(const kelAbstractProcessSegmentation &other) = default;

    /// Segments the acquisition image into the segmentation image, which is a new object: whoever holds the
    /// last mask keeps it. False when there is nothing to segment: no image, or one without pixels.
    virtual bool segment() = 0;

    void setAcquisitionImage(QSharedPointer<kelDataImage> &image);
    /// The mask; null until `segment` puts one there.
    QSharedPointer<kelDataImage> &getSegmentationImage();

protected:
    /// The frame to segment; null until set.
    const QSharedPointer<kelDataImage> &getAcquisitionImage() const;

    explicit kelAbstractProcessSegmentation(kelAbstractProcessSegmentationPrivate &dd,
                                            QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessSegmentation)
};

#endif
