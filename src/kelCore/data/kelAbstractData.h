#ifndef KELCORE_KELABSTRACTDATA_H
#define KELCORE_KELABSTRACTDATA_H

/// \file
/// Common base of the data objects that stages exchange.

#include <kelCore/kelCoreExport.h>
#include <nubCore/nubAbstractData.h>

#include <QVariantMap>

class kelAbstractDataPrivate;

/// A data object with two maps of named values.
///
/// The *specific properties* are for the stages: the library only keeps them, and every copy carries them.
/// The *map* is what the recording stores of the object (see kelAbstractProcessDataWriter); copies start with
/// an empty one, deliberately. `copy` and assignment carry neither.
///
/// A concrete class overrides `identifier()` to return its own name, `clone()` and `copy`.
class KELCORE_EXPORT kelAbstractData : public nubAbstractData
{
    Q_OBJECT

public:
    kelAbstractData();
    /// Carries the framework's part and the specific properties; the map starts empty.
    kelAbstractData(const kelAbstractData &other);
    ~kelAbstractData() override;
    /// Calls the virtual `copy`.
    kelAbstractData &operator=(const kelAbstractData &other);

    kelAbstractData *clone() override = 0;
    /// Copies the framework's part. When `other` is of another kind, says so at level 17 and copies it all
    /// the same.
    void copy(const nubAbstractObject &other) override;
    /// "kelAbstractData".
    QString identifier() const override;

    using nubAbstractData::read;
    using nubAbstractData::write;
    /// Default: notice at level 1, false.
    bool read(const QString &file) override;
    /// Default: notice at level 1, false.
    bool write(const QString &file) override;

    /// Replaces all specific properties. Default: notice at level 1, then true.
    virtual bool setSpecificProperties(const QVariantMap &properties);
    const QVariantMap &getSpecificProperties() const;
    /// Sets one specific property, replacing the value it had.
    void addSpecificProperty(const QString &key, const QVariant &value);

    /// The recorded map.
    QVariantMap getMap();
    /// Replaces the recorded map; always true.
    bool setMap(QVariantMap &map);

protected:
    explicit kelAbstractData(kelAbstractDataPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractData)
};

#endif
