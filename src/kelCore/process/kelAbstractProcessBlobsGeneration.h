#ifndef KELCORE_KELABSTRACTPROCESSBLOBSGENERATION_H
#define KELCORE_KELABSTRACTPROCESSBLOBSGENERATION_H

/// \file
/// Stage interface: finding the blobs of a mask.

#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QSharedPointer>

class kelAbstractProcessBlobsGenerationPrivate;
class kelDataBlob;
class kelDataImage;

/// Turns a foreground mask into blobs.
///
/// Call `setSegmentationImage`, then `generateBlobs`; after it `getBlobs` holds one blob for each region of
/// the mask whose area is at least the minimum area and whose width and height are at least the minimum
/// dimension.
class KELCORE_EXPORT kelAbstractProcessBlobsGeneration : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessBlobsGeneration();
    /// Carries mask, minimums and blobs; mask and blobs are shared.
    kelAbstractProcessBlobsGeneration(const kelAbstractProcessBlobsGeneration &other);
    ~kelAbstractProcessBlobsGeneration() override;

    /// Replaces the blobs by those of the segmentation image; false when there is no mask.
    virtual bool generateBlobs() = 0;

    void setSegmentationImage(QSharedPointer<kelDataImage> &image);
    /// Smallest area of a blob, in pixels; 2000 until set.
    void setMinArea(int area);
    /// Smallest width and height of a blob, in pixels; 50 until set.
    void setMinDimension(int dimension);
    QList<QSharedPointer<kelDataBlob>> &getBlobs();

protected:
    explicit kelAbstractProcessBlobsGeneration(kelAbstractProcessBlobsGenerationPrivate &dd,
                                               QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessBlobsGeneration)
};

#endif
