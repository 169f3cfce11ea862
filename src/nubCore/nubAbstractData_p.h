#ifndef NUBCORE_NUBABSTRACTDATA_P_H
#define NUBCORE_NUBABSTRACTDATA_P_H

/// \file
/// State of nubAbstractData. Installed for code that derives from it; not part of the stable interface.

#include <nubCore/nubAbstractData.h>
#include <nubCore/nubAbstractObject_p.h>

#include <QMap>

class NUBCORE_EXPORT nubAbstractDataPrivate : public nubAbstractObjectPrivate
{
public:
    // Which factories may serve the object, by name; nothing here reads them, copies carry them.
    QMap<QString, bool> readers;
    QMap<QString, bool> writers;
    QMap<QString, bool> converters;
    QMap<QString, bool> serializers;
    QMap<QString, bool> deserializers;
    QString path;
    QStringList paths;
    int channelCount = 0;
    QList<QImage> thumbnails;
};

#endif
