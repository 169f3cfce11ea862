#ifndef KELCORE_KELABSTRACTPROCESSSEGMENTATION_H
#define KELCORE_KELABSTRACTPROCESSSEGMENTATION_H

/// \file
/// Stage interface: telling foreground from background.

#include <kelCore/process/kelAbstractProcess.h>

#include <QSharedPointer>

class kelAbstractProcessSegmentationPrivate;
class kelDataImage;

/// Turns a colour frame into a foreground mask.
///
/// Call `setAcquisitionImage`, then `segment`; after it `getSegmentationImage` holds a one-channel 8-bit mask
/// of the frame's size, 255 where there is foreground and 0 elsewhere.
class KELCORE_EXPORT kelAbstractProcessSegmentation : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessSegmentation();
    /// Shares both images.
    kelAbstractProcessSegmentation(const kelAbstractProcessSegmentation &other);
    ~kelAbstractProcessSegmentation() override;

    /// Segments the acquisition image into the segmentation image; false when there is nothing to segment.
    virtual bool segment() = 0;

    void setAcquisitionImage(QSharedPointer<kelDataImage> &image);
    /// The mask; null until `segment` puts one there.
    QSharedPointer<kelDataImage> &getSegmentationImage();

protected:
    explicit kelAbstractProcessSegmentation(kelAbstractProcessSegmentationPrivate &dd,
                                            QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessSegmentation)
};

#endif
