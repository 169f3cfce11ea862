#ifndef NUBCORE_NUBABSTRACTOBJECT_H
#define NUBCORE_NUBABSTRACTOBJECT_H

/// \file
/// Root of the object model: one private object per object, copying by virtual `copy`, and the identifier.

#include <nubCore/nubCoreExport.h>

#include <QObject>
#include <QScopedPointer>
#include <QString>

class nubAbstractObjectPrivate;

/// Base of data objects, processes and views.
///
/// **Private object.** Each object has exactly one implementation object, allocated by the most-derived
/// constructor, handed up through the protected constructors and deleted here. Private classes derive from
/// one another as their public classes do; each public class reaches its own through
/// `Q_DECLARE_PRIVATE_D(nub_d, Class)` and `Q_D`. Public classes add no data members of their own.
///
/// **Copying.** A copy constructor decides what a copy carries and gives it the source's `QObject` parent.
/// Assignment calls the virtual `copy`, which may carry less: each class says what.
///
/// **Parents.** The framework never sets a parent. An object held by value or by a shared pointer must have
/// none, or it is deleted twice.
class NUBCORE_EXPORT nubAbstractObject : public QObject
{
    Q_OBJECT

public:
    explicit nubAbstractObject(nubAbstractObject *parent = nullptr);
    nubAbstractObject(const nubAbstractObject &other);
    ~nubAbstractObject() override;

    /// Calls the virtual `copy`.
    nubAbstractObject &operator=(const nubAbstractObject &other);

    /// A new object made by the copy constructor, owned by the caller; null where a class supplies none.
    virtual nubAbstractObject *clone();
    /// Copies the framework's named tables and flag; the retain count stays each object's own.
    virtual void copy(const nubAbstractObject &other);
    /// True for the object itself.
    virtual bool isEqual(const nubAbstractObject &other) const;
    /// Empty.
    virtual QString description() const;
    /// The name of the class, and the type check of `copy`: the meta-object class name unless overridden.
    virtual QString identifier() const;
    /// The `QObject` name.
    virtual QString name() const;
    /// Hook for a changed property; does nothing.
    virtual void onPropertySet(const QString &key, const QString &value);
    /// Hook for changed metadata; does nothing.
    virtual void onMetaDataSet(const QString &key, const QString &value);

    /// Takes a reference to the object and returns how many are held. A new object has none.
    int retain() const;
    /// Drops a reference and returns how many are left; dropping the last one deletes the object. Without a
    /// matching `retain` nothing happens.
    int release() const;

protected:
    /// Takes ownership of `dd` and makes this object its owner.
    explicit nubAbstractObject(nubAbstractObjectPrivate &dd, QObject *parent = nullptr);

    QScopedPointer<nubAbstractObjectPrivate> nub_d;

private:
    Q_DECLARE_PRIVATE_D(nub_d, nubAbstractObject)
};

#endif
