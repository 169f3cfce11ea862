#ifndef KELCORE_KELABSTRACTPROCESSBLOBSGENERATION_H
#define KELCORE_KELABSTRACTPROCESSBLOBSGENERATION_H

/// \file
/// Stage interface: finding the blobs of a mask.

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

class kelAbstractProcessBlobsGenerationPrivate;

/// Turns a foreground mask into blobs.
///
/// Call `setMinArea` and `setMinDimension` once; then, per frame, `setSegmentationImage` and `generateBlobs`.
/// After it `getBlobs` holds one blob for each region of the mask whose area is at least the minimum area and
/// whose width and height are at least the minimum dimension.
class KELCORE_EXPORT kelAbstractProcessBlobsGeneration : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessBlobsGeneration();
    /// Carries mask, minimums and blobs; mask and blobs are shared.
    kelAbstractProcessBlobsGeneration(const kelAbstractProcessBlobsGeneration &other);
    ~kelAbstractProcessBlobsGeneration() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessBlobsGeneration &operator=(const kelAbstractProcessBlobsGeneration &other) = default;

    /// Replaces the blobs by those of the segmentation image, as new objects; a mask without foreground gives
    /// none. False when there is no mask.
    virtual bool generateBlobs() = 0;

    void setSegmentationImage(QSharedPointer<kelDataImage> &image);
    /// Smallest area of a blob, in pixels; 2000 until set.
    void setMinArea(int area);
    /// Smallest width and height of a blob, in pixels; 50 until set.
    void setMinDimension(int dimension);
    /// The stage's own list, where `generateBlobs` puts the blobs; empty until then.
    QList<QSharedPointer<kelDataBlob>> &getBlobs();

protected:
    /// The mask; null until set.
    const QSharedPointer<kelDataImage> &getSegmentationImage() const;
    /// pixels
    int getMinArea() const;
    /// pixels
    int getMinDimension() const;

    explicit kelAbstractProcessBlobsGeneration(kelAbstractProcessBlobsGenerationPrivate &dd,
                                               QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessBlobsGeneration)
};

#endif
