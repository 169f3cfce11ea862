#ifndef KELCORE_KELDATALINKEDPHYSICALOBJECT_H
#define KELCORE_KELDATALINKEDPHYSICALOBJECT_H

/// \file
/// One node of the graph of parts that trackers build over time.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>

#include <QSharedPointer>

#include <list>

class kelDataLinkedPhysicalObjectPrivate;

/// A part of an actor that knows its fathers and its sons. Each edge is a link object with both ends and a
/// reliability; a son lists it among its father links, a father among its son links.
///
/// An object cannot hand out a shared pointer to itself, so `addFather` and `addSon` return links with one
/// end null and the caller completes them:
///
///     son->addFather(father)->setSon(son);
///
///     auto link = father->addSon(son);
///     link->setFather(father);
///     father->addSonLink(link);
///
/// **Ownership.** Every reference is strong: objects hold their neighbours and links, a link holds both ends.
/// A link that is listed by one of its own ends closes a circle, and that object lives until `releaseLPO` is
/// called on it: whoever gives up a graph calls it on each of its objects. The destructor calls it too, but
/// runs only once nothing refers to the object any more. Objects and links must have no `QObject` parent.
///
/// Chains of any length are released without deep recursion.
///
/// The copy constructor and `clone` make an object outside the graph; `copy` and assignment share the other
/// object's neighbours and links, which are not told about the newcomer.
class KELCORE_EXPORT kelDataLinkedPhysicalObject : public kelAbstractData
{
    Q_OBJECT

public:
    kelDataLinkedPhysicalObject();
    kelDataLinkedPhysicalObject(const kelDataLinkedPhysicalObject &other);
    /// Calls `releaseLPO`.
    ~kelDataLinkedPhysicalObject() override;
    /// Calls the virtual `copy`.
    kelDataLinkedPhysicalObject &operator=(const kelDataLinkedPhysicalObject &other);

    /// Made by the copy constructor; the caller owns it.
    kelDataLinkedPhysicalObject *clone() override;
    /// Replaces the four lists by copies of the other object's. When `other` is of another kind, the slicing
    /// warning is logged once and the lists are kept.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> getFathers() const;
    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> getSons() const;
    std::list<QSharedPointer<kelDataLinkedPhysicalObjectLink>> getFatherLinks() const;
    std::list<QSharedPointer<kelDataLinkedPhysicalObjectLink>> getSonLinks() const;

    /// Appends; a link may be listed more than once.
    void addFatherLink(QSharedPointer<kelDataLinkedPhysicalObjectLink> link);
    void addSonLink(QSharedPointer<kelDataLinkedPhysicalObjectLink> &link);
    /// Removes the first entry of that very link. Callers remove only links that are listed; without an entry
    /// nothing happens.
    void removeFatherLink(QSharedPointer<kelDataLinkedPhysicalObjectLink> l);
    void removeSonLink(QSharedPointer<kelDataLinkedPhysicalObjectLink> l);
    void removeAllSonLinks();

    /// Creates a link to `son` and lists it among the son's father links. This object does not change and the
    /// link's father is null: the caller sets it and, as needed, lists the link with `addSonLink`. Unlike
    /// `addFather` in this, deliberately.
    ///
    /// For a null pointer nothing is listed; the link returned has no son.
    QSharedPointer<kelDataLinkedPhysicalObjectLink> addSon(QSharedPointer<kelDataLinkedPhysicalObject> son);
    /// Lists `father` among the fathers, and a new link among this object's father links and the father's son
    /// links. The link's son is null: the caller sets it.
    ///
    /// For a null pointer nothing is listed; the link returned has no father.
    QSharedPointer<kelDataLinkedPhysicalObjectLink>
    addFather(QSharedPointer<kelDataLinkedPhysicalObject> father);

    /// Breaks every circle that runs through this object: empties its father links, removes each of its son
    /// links from the father links of the son (one without a son is skipped), and empties its son links,
    /// fathers and sons. The neighbours' other lists keep what they hold of this object.
    ///
    /// When nothing but what is let go here referred to this object, it is destroyed before the call returns.
    /// What a release lets go while another is under way in the same thread, in a destructor say, is dropped
    /// before the outermost one returns.
    void releaseLPO();

protected:
    explicit kelDataLinkedPhysicalObject(kelDataLinkedPhysicalObjectPrivate &dd, QObject *parent = nullptr);

    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> fathers;
    std::list<QSharedPointer<kelDataLinkedPhysicalObject>> sons; ///< Filled by derived classes alone.
    std::list<QSharedPointer<kelDataLinkedPhysicalObjectLink>> fatherLinks; ///< This object is the son.
    std::list<QSharedPointer<kelDataLinkedPhysicalObjectLink>> sonLinks; ///< This object is the father.

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataLinkedPhysicalObject)
};

#endif
