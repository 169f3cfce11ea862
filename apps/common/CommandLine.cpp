#include "common/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <climits>
#include <cmath>
#include <iostream>
#include <numeric>
#include <vector>

namespace {

/// How many letters to add, drop, change or swap with their neighbour lead from one word to the other.
int slips(const QString &from, const QString &to)
{
    const int width = static_cast<int>(to.size()) + 1;
    std::vector<int> beforeLast(static_cast<size_t>(width)), last(beforeLast), row(beforeLast);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= from.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (int j = 1; j < width; ++j) {
            const auto at = static_cast<size_t>(j);
            const bool same = from[i - 1] == to[j - 1];
            row[at] = std::min({row[at - 1] + 1, last[at] + 1, last[at - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[at] = std::min(row[at], beforeLast[at - 2] + 1);
        }
    }
    return row.back();
}

/// The long names of the parser's options. It tells them in its help text alone, one to a line.
QStringList optionNames(const QCommandLineParser &parser)
{
    static const QRegularExpression line(QStringLiteral("^  (?:-\\w, )?--([\\w-]+)"),
                                         QRegularExpression::MultilineOption);
    QStringList names;
    for (auto match = line.globalMatch(parser.helpText()); match.hasNext();)
        names.append(match.next().captured(1));
    return names;
}

/// What the parser does not understand.
QString problem(const QCommandLineParser &parser, const QStringList &arguments)
{
    if (parser.unknownOptionNames().isEmpty())
        return parser.errorText();
    const QString unknown = parser.unknownOptionNames().first();
    // One dash in front of a word reads as an option for each letter: show what was written.
    const auto written =
        std::find_if(arguments.cbegin(), arguments.cend(), [&unknown](const QString &argument) {
            return argument.startsWith(QStringLiteral("--") + unknown)
                || (argument.startsWith(QLatin1Char('-')) && !argument.startsWith(QLatin1String("--"))
                    && argument.contains(unknown));
        });
    QString word = written == arguments.cend() ? unknown : *written;
    word = word.section(QLatin1Char('='), 0, 0);
    const QString bare = QString(word).remove(QRegularExpression(QStringLiteral("^-+")));
    return QStringLiteral("there is no option %1%2")
        .arg(word, suggestion(bare, optionNames(parser), QStringLiteral("--")));
}

void refuseEmptyValues(const QCommandLineParser &parser)
{
    for (const QString &name : parser.optionNames())
        if (parser.values(name).contains(QString()))
            throw misuse(QStringLiteral("the value of --%1 is empty").arg(name));
    const int empty = static_cast<int>(parser.positionalArguments().indexOf(QString()));
    if (empty >= 0)
        throw misuse(QStringLiteral("argument %1 is empty").arg(empty + 1));
}

} // namespace

bool parse(QCommandLineParser &parser, const QStringList &arguments, const QString &usage,
           const QString &notes)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version."));
    parser.addOption(help);
    parser.addOption(version);
    if (!parser.parse(QStringList{QCoreApplication::applicationName()} + arguments))
        throw misuse(problem(parser, arguments));
    if (parser.isSet(help)) {
        const QString text = parser.helpText();
        std::cout << "Usage: " << usage.toStdString() << '\n'
                  << text.mid(text.indexOf(QLatin1Char('\n')) + 1).toStdString() << '\n'
                  << notes.toStdString();
        return false;
    }
    if (parser.isSet(version)) {
        std::cout << QCoreApplication::applicationName().toStdString() << ' '
                  << QCoreApplication::applicationVersion().toStdString() << '\n';
        return false;
    }
    refuseEmptyValues(parser);
    return true;
}

int integerOption(const QCommandLineParser &parser, const QString &option, int least, int otherwise)
{
    if (!parser.isSet(option))
        return otherwise;
    bool ok = false;
    const int value = parser.value(option).toInt(&ok);
    if (!ok || value < least)
        throw misuse(
            QStringLiteral("--%1 takes a whole number from %2 to %3, not \"%4\"")
                .arg(option, QString::number(least), QString::number(INT_MAX), parser.value(option)));
    return value;
}

double realOption(const QCommandLineParser &parser, const QString &option, double least, double greatest,
                  double otherwise)
{
    if (!parser.isSet(option))
        return otherwise;
    bool ok = false;
    const double value = parser.value(option).toDouble(&ok);
    if (!ok || !(value >= least && value <= greatest)) // also what is no number
        throw misuse(QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\"")
                         .arg(option, QString::number(least, 'f', QLocale::FloatingPointShortest),
                              QString::number(greatest, 'f', QLocale::FloatingPointShortest),
                              parser.value(option)));
    return value;
}

QString nearest(const QString &word, const QStringList &known)
{
    QString best;
    int fewest = (static_cast<int>(word.size()) + 2) / 3 + 1; // a slip in three letters
    for (const QString &candidate : known) {
        const bool begun = word.size() > 1 && candidate.startsWith(word);
        const int count = begun ? 0 : slips(word, candidate);
        if (count < fewest && count < candidate.size()) {
            fewest = count;
            best = candidate;
        }
    }
    return best;
}

QString suggestion(const QString &word, const QStringList &known, const QString &prefix)
{
    const QString best = nearest(word, known);
    return best.isEmpty() ? QString() : QStringLiteral("; did you mean %1%2?").arg(prefix, best);
}
