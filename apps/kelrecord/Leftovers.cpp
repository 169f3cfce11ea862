#include "kelrecord/Leftovers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

const QByteArray endOfDocument("</DataFlow>");

/// Random letters mix upper and lower case as no word does.
bool looksRandom(const QString &letters)
{
    return letters.contains(QRegularExpression(QStringLiteral("[a-z][A-Z]")));
}

bool isCutOff(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray begin = file.read(9);
    file.seek(qMax<qint64>(0, file.size() - 64));
    return begin.isEmpty()
        || ((begin == "<DataFlow" || begin.startsWith("<?xml")) && !file.readAll().contains(endOfDocument));
}

} // namespace

void removeTemporaryDocuments(const QString &document)
{
    const QFileInfo info(document);
    static const QRegularExpression sixLetters(QStringLiteral("^[A-Za-z]{6}$"));
    const QDir folder = info.dir();
    const QDir::Filters files = QDir::Files | QDir::Hidden | QDir::NoSymLinks;
    for (const QString &name : folder.entryList({info.fileName() + QStringLiteral(".??????")}, files)) {
        const QString letters = name.right(6);
        if (letters.contains(sixLetters) && (looksRandom(letters) || isCutOff(folder.filePath(name))))
            QFile::remove(folder.filePath(name));
    }
}
