#ifndef KELCORE_KELDATACONTEXT_H
#define KELCORE_KELDATACONTEXT_H

/// \file
/// The static scene that a camera looks at.

#include <kelCore/data/ContextElement.h>
#include <kelCore/data/kelAbstractData.h>

class kelDataContextPrivate;

/// The zones, objects and walls of a scene, in world coordinates.
///
///     kelDataContext scene;
///     if (scene.read("scene.yml")) {
///         for (const ContextElement &element : scene.getContext())
///             element.displayObject();
///     }
class KELCORE_EXPORT kelDataContext : public kelAbstractData
{
    Q_OBJECT

public:
    /// No elements; referential "Default".
    kelDataContext();
    kelDataContext(const kelDataContext &other);
    ~kelDataContext() override;
    kelDataContext &operator=(const kelDataContext &other);

    kelDataContext *clone() override;
    /// Replaces the elements and the referential name by the other context's. When `other` is of another
    /// kind, the slicing warning is logged once and both are kept.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    using kelAbstractData::read;
    /// Appends the elements of a context file behind those already held: an XML or YAML document of OpenCV's
    /// storage, with the key "contextList" that holds a sequence of maps. A file without it appends nothing.
    ///
    ///     %YAML:1.0
    ///     ---
    ///     contextList:
    ///        - { semantic: zone, shape: polygon, height: 0, name: door, isClosed: 1,
    ///            points: [ { x: 0., y: 0., z: 0. }, { x: 1., y: 0., z: 0. }, { x: 1., y: 1., z: 0. } ] }
    ///        - { semantic: object, shape: circle, height: 1.2, name: table, radius: 0.5,
    ///            points: [ { x: 3., y: 2., z: 0. } ] }
    ///
    /// Every element of the sequence is kept, with "semantic", "shape", "height" and "name". Geometry is read
    /// for these pairs:
    ///
    /// - polygon of a zone, an object or a wall: "points" are its vertices; "isClosed";
    /// - circle of a zone or an object: the last of "points" is its centre; "radius";
    /// - cube of an object: "points" are its vertices; "isClosed".
    ///
    /// Values are never rejected. A text that is missing or no text is empty. A missing number is 0; one that
    /// is no number is 1e300, or 2147483647 for "isClosed", which is rounded to the nearest integer.
    ///
    /// \return false, after a line on standard output, when the file cannot be opened.
    /// \throws cv::Exception when the file is no storage document, and when an element or a point is no map
    /// (one that holds nothing is a map without keys). The object is unchanged then.
    bool read(const QString &fileName) override;

    /// A copy of all elements with their vertices: keep it instead of asking once per frame.
    std::list<ContextElement> getContext() const;
    /// The world referential; "Default", whatever the file says.
    std::string getReferentialName() const;

protected:
    explicit kelDataContext(kelDataContextPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataContext)
};

#endif
