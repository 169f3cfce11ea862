#ifndef KELCORE_KELDATALINKEDPHYSICALOBJECTLINK_H
#define KELCORE_KELDATALINKEDPHYSICALOBJECTLINK_H

/// \file
/// One edge of the graph of linked physical objects.

#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractData.h>

#include <QSharedPointer>

class kelDataLinkedPhysicalObject;
class kelDataLinkedPhysicalObjectLinkPrivate;

/// Joins a father to a son, with a reliability. The graph is described at kelDataLinkedPhysicalObject, whose
/// `addFather` and `addSon` create links with one end still null.
///
/// It derives from the framework's data class directly and so has neither specific properties nor a recorded
/// map.
///
/// **Ownership.** The link holds both of its ends by strong references. It knows nothing of the lists it
/// stands in: setting an end changes no object.
class KELCORE_EXPORT kelDataLinkedPhysicalObjectLink : public nubAbstractData
{
    Q_OBJECT

public:
    /// No ends, reliability 1.
    kelDataLinkedPhysicalObjectLink();
    kelDataLinkedPhysicalObjectLink(QSharedPointer<kelDataLinkedPhysicalObject> fatherObject,
                                    QSharedPointer<kelDataLinkedPhysicalObject> sonObject,
                                    double linkReliability);
    /// Starts without ends and assigns from `other`. A link of a derived class with an identifier of its own
    /// is therefore cut down like any other of another kind.
    kelDataLinkedPhysicalObjectLink(const kelDataLinkedPhysicalObjectLink &other);
    /// Drops the father, then the son.
    ~kelDataLinkedPhysicalObjectLink() override;
    /// Calls the virtual `copy`.
    kelDataLinkedPhysicalObjectLink &operator=(const kelDataLinkedPhysicalObjectLink &other);

    /// Made by the copy constructor; the caller owns it.
    kelDataLinkedPhysicalObjectLink *clone() override;
    /// Takes the other link's reliability and shares its ends. When `other` is of another kind, the slicing
    /// warning is logged once and nothing of this class is copied.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    QSharedPointer<kelDataLinkedPhysicalObject> getFather() const;
    void setFather(QSharedPointer<kelDataLinkedPhysicalObject> object);
    QSharedPointer<kelDataLinkedPhysicalObject> getSon() const;
    void setSon(QSharedPointer<kelDataLinkedPhysicalObject> object);
    double getReliability() const;
    void setReliability(double value);

protected:
    explicit kelDataLinkedPhysicalObjectLink(kelDataLinkedPhysicalObjectLinkPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataLinkedPhysicalObjectLink)

    QSharedPointer<kelDataLinkedPhysicalObject> son;
    double reliability = 1.0;
    QSharedPointer<kelDataLinkedPhysicalObject> father;
};

#include <kelCore/data/kelDataLinkedPhysicalObject.h> // for its ends; each of the two names the other

#endif
