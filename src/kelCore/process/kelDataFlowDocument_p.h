#ifndef KELCORE_KELDATAFLOWDOCUMENT_P_H
#define KELCORE_KELDATAFLOWDOCUMENT_P_H

/// \file
/// How a data-flow document becomes a file. Internal.

#include <QByteArray>

class QDomDocument;
class QString;

namespace kelDataFlow {

/// The document as UTF-8: exactly what `toString(1)` gives, but for the order of attributes, which the
/// toolkit draws anew in each process. The attributes of a recording come in the order of its format, others
/// behind them by name.
///
/// Characters that XML cannot carry become U+FFFD: no key makes a recording unreadable. An XML declaration of
/// another encoding is made to say UTF-8, in the document too: that is what is written.
QByteArray toXml(const QDomDocument &document);

/// Replaces the content of the file at `path` in one step: whoever reads it finds the old content or the new
/// one, never a part. Where the folder allows no second file, the content is replaced in place. False when
/// nothing was replaced.
bool replaceFile(const QString &path, const QByteArray &content);

} // namespace kelDataFlow

#endif
