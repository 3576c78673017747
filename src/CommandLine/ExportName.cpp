// SPDX-License-Identifier: MIT
#include "ExportName.h"

#include <QTextBoundaryFinder>

using namespace Qt::Literals::StringLiterals;

namespace {

QString cut(const QString &name)
{
    if (name.toUtf8().size() <= ExportNames::mostBytes)
        return name;
    // Never more units than bytes, and room for the rest of the last character.
    const QString front = name.left(2 * ExportNames::mostBytes);
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, front);
    qsizetype end = 0;
    for (qsizetype next = 0;
         next != -1 && front.left(next).toUtf8().size() <= ExportNames::mostBytes;
         next = characters.toNextBoundary())
        end = next;
    return front.left(end).trimmed() + u'…';
}

QString nameOf(const QString &title)
{
    QString name = title;
    for (QChar &unit : name) {
        if (unit == u'/' || unit == u'\\' || unit.category() == QChar::Other_Control)
            unit = u'-';
    }
    name = name.trimmed();
    if (name.isEmpty())
        return "Untitled"_L1;
    if (name.startsWith(u'.'))
        name.prepend(u'_');
    return cut(name);
}

} // namespace

std::string ExportNames::next(const QString &title)
{
    QString name = nameOf(title);
    const int count = ++m_counts[name.toCaseFolded()];
    if (count > 1)
        name += " ("_L1 + QString::number(count) + u')';
    return (name + ".md"_L1).toStdString();
}
