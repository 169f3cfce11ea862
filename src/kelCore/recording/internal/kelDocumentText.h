#ifndef KELCORE_KELDOCUMENTTEXT_H
#define KELCORE_KELDOCUMENTTEXT_H

/// \file
/// The text of a data-flow document. Internal.

#include <QByteArray>

class QDomDocument;
class QFile;
class QString;

namespace kelDataFlow {

/// The document as UTF-8: exactly what `toString(1)` gives, but for the order of attributes, which the
/// toolkit draws anew in each process. The attributes of a recording come in the order of its format, others
/// behind them by name.
///
/// Characters that XML cannot carry become U+FFFD: no key makes a recording unreadable. An XML declaration of
/// another encoding is made to say UTF-8, in the document too: that is what is written. A document that
/// begins with another instruction that names an encoding is given a declaration, or a parser of the toolkit
/// would go by that.
QByteArray toXml(const QDomDocument &document);

/// Parses an open file into `document` and closes it. When that fails, says so in two debug lines. A file
/// that is not open gives an empty message at line 0, column 0.
bool parse(QFile &file, QDomDocument &document);

/// Parses a text of any encoding; `document` holds half a tree when that fails.
bool setContent(QDomDocument &document, const QByteArray &text, QString *message = nullptr,
                int *line = nullptr, int *column = nullptr);

} // namespace kelDataFlow

#endif
