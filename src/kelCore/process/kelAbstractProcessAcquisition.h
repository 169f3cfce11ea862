#ifndef KELCORE_KELABSTRACTPROCESSACQUISITION_H
#define KELCORE_KELABSTRACTPROCESSACQUISITION_H

/// \file
/// Stage interface: taking frames from a source.

#include <kelCore/process/kelAbstractProcess.h>

#include <QSharedPointer>

namespace cv {
class Mat;
}
class kelAbstractDataStream;
class kelAbstractProcessAcquisitionPrivate;
class kelDataImage;

/// Takes one frame after another from the source that a stream descriptor describes.
///
/// Call `setStream`, then `acquire` per frame; after a successful `acquire`, `getImage` holds the colour
/// frame and, for a depth camera, `getDepth` the depth frame.
class KELCORE_EXPORT kelAbstractProcessAcquisition : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessAcquisition();
    /// Shares the stream and both images.
    kelAbstractProcessAcquisition(const kelAbstractProcessAcquisition &other);
    ~kelAbstractProcessAcquisition() override;

    virtual void setStream(QSharedPointer<kelAbstractDataStream> &stream);
    /// Takes the next frame; false when there is none. Default: notice at level 1, false.
    virtual bool acquire();

    /// The colour frame; null until one is put there.
    QSharedPointer<kelDataImage> &getImage();
    /// The depth frame; null until one is put there.
    QSharedPointer<kelDataImage> &getDepth();

    /// Hands the matrix, its pixels shared, to the colour image object; makes that object where there is
    /// none.
    void setImage(cv::Mat &image);
    /// The same for the depth image object.
    void setDepth(cv::Mat &depth);

protected:
    explicit kelAbstractProcessAcquisition(kelAbstractProcessAcquisitionPrivate &dd,
                                           QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessAcquisition)
};

#endif
