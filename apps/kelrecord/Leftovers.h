#ifndef APPS_KELRECORD_LEFTOVERS_H
#define APPS_KELRECORD_LEFTOVERS_H

/// \file
/// What writing a document leaves behind when it is killed or fails. Whoever calls these holds the folder.

#include <QString>

/// Removes the temporary documents of writers that were killed: they are named as the document with a dot and
/// six letters behind, which a writer takes at random. What could be a name that a person chose
/// ("dataflow.xml.backup") stays, unless it holds a document without its end.
/// \param document path of the document.
void removeTemporaryDocuments(const QString &document);

#endif
