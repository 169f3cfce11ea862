#ifndef KELCORE_KELABSTRACTPROCESSACQUISITION_H
#define KELCORE_KELABSTRACTPROCESSACQUISITION_H

/// \file
/// Stage interface: taking frames from a source.

#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QSharedPointer>

class kelAbstractProcessAcquisitionPrivate;

/// Takes one frame after another from the source that a stream descriptor describes.
///
/// Call `setStream` once, then `acquire` per frame. After a successful `acquire`, `getImage` holds the colour
/// frame and, for a depth camera, `getDepth` the depth frame. The stages behind share both: a stage that
/// acquires resets them to new objects, and so leaves the last frame to whoever still holds it.
class KELCORE_EXPORT kelAbstractProcessAcquisition : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessAcquisition();
    /// Shares the stream and both images.
    kelAbstractProcessAcquisition(const kelAbstractProcessAcquisition &other);
    ~kelAbstractProcessAcquisition() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessAcquisition &operator=(const kelAbstractProcessAcquisition &other) = default;

    /// Keeps the descriptor. A stage that opens its source here calls this one first.
    virtual void setStream(QSharedPointer<kelAbstractDataStream> &stream);
    /// Takes the next frame; false when there is none, at the end of a file for instance. Default: notice at
    /// level 1, false.
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
    /// The descriptor that `setStream` kept; null until then.
    const QSharedPointer<kelAbstractDataStream> &getStream() const;

    explicit kelAbstractProcessAcquisition(kelAbstractProcessAcquisitionPrivate &dd,
                                           QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessAcquisition)
};

#endif
