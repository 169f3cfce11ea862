#ifndef KELCORE_KELVALUETYPE_H
#define KELCORE_KELVALUETYPE_H

/// \file
/// The types of a record's values. Internal.

#include <QtGlobal>

class QVariant;
class kelValueReader;
class kelValueWriter;

/// One type: its number in a record, and how its values are laid out, read and written.
///
/// A layout walks through a value's bytes (kelValueLayout.h). Types that have no function of their own are
/// decoded or encoded by the toolkit.
struct kelValueType
{
    quint32 number; ///< In a record. `named` for types that are recorded under their name.
    int metaType; ///< The toolkit's number, which differs between its versions.
    const char *layout;
    bool (*read)(kelValueReader &, QVariant &);
    bool (*write)(kelValueWriter &, const QVariant &);

    /// The number in front of a name.
    static constexpr quint32 named = 127;

    static const kelValueType *numbered(quint32 number);
    static const kelValueType *ofMetaType(int metaType);
};

#endif
