#ifndef KELCORE_KELDATAIMAGE_H
#define KELCORE_KELDATAIMAGE_H

/// \file
/// One frame, colour or depth.

#include <kelCore/data/kelAbstractData.h>

#include <opencv2/core/mat.hpp>

class kelDataImagePrivate;

/// A frame: a matrix of any type and channel count, empty at first.
///
/// Pixels are always shared, never duplicated: by `setImage`, by the copy constructor and by `copy`. Writing
/// into the pixels of one image is seen by all its copies; a stage that needs its own clones the matrix.
class KELCORE_EXPORT kelDataImage : public kelAbstractData
{
    Q_OBJECT

public:
    kelDataImage();
    kelDataImage(const kelDataImage &other);
    ~kelDataImage() override;
    kelDataImage &operator=(const kelDataImage &other);

    kelDataImage *clone() override;
    /// Shares the other image's pixels. When `other` is of another kind, the slicing warning is logged twice
    /// (once by the base) and the image is kept.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    void setImage(const cv::Mat &image);
    const cv::Mat &getImage() const;

    using kelAbstractData::read;
    using kelAbstractData::write;
    /// Does nothing and returns true, unlike the base: a frame comes from an acquisition stage, not from a
    /// file.
    bool read(const QString &file) override;
    /// Does nothing and returns true, unlike the base.
    bool write(const QString &file) override;

protected:
    explicit kelDataImage(kelDataImagePrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataImage)
};

#endif
