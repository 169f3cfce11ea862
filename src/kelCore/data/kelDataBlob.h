#ifndef KELCORE_KELDATABLOB_H
#define KELCORE_KELDATABLOB_H

/// \file
/// One detected region of a frame.

#include <kelCore/data/kelAbstractData.h>

#include <opencv2/core/types.hpp>

#include <QRect>

class kelDataBlobPrivate;

/// A region of a frame: its box in image pixels.
///
/// There are two boxes, and they are independent. `getBoundingBox2D` is the one that stages use; it is not
/// recorded. `getBoundingBox2D_qt` is the entry "BoundingBox2D" of the recorded map; copies do not carry it.
class KELCORE_EXPORT kelDataBlob : public kelAbstractData
{
    Q_OBJECT

public:
    kelDataBlob();
    kelDataBlob(const kelDataBlob &other);
    ~kelDataBlob() override;
    kelDataBlob &operator=(const kelDataBlob &other);

    kelDataBlob *clone() override;
    /// Takes the other blob's box, not its map entry. When `other` is of another kind, the slicing warning is
    /// logged once and the box is kept.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    void setBoundingBox2D(const cv::Rect &box);
    /// (-1, -1, 0, 0) until set.
    const cv::Rect &getBoundingBox2D() const;

    /// Sets the recorded box.
    void setBoundingBox2D_qt(const QRect &box);
    /// The recorded box; a null rectangle until set.
    QRect getBoundingBox2D_qt() const;

protected:
    explicit kelDataBlob(kelDataBlobPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataBlob)
};

#endif
