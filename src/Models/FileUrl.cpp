// SPDX-License-Identifier: MIT
#include "FileUrl.h"

#include <QByteArray>

QUrl fileUrl(const std::filesystem::path &path)
{
    const QByteArray bytes = QByteArray::fromStdString(path.native());
    // Every other byte than those of names that are texts stays as it is only when it is encoded.
    return bytes.isValidUtf8() ? QUrl::fromLocalFile(QString::fromUtf8(bytes))
                               : QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/"));
}

std::filesystem::path localPath(const QUrl &url)
{
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

QString shownPath(const std::filesystem::path &path)
{
    constexpr qsizetype mostAtTheBeginning = 80;
    constexpr qsizetype mostAtTheEnd = 120;
    QString whole = QString::fromUtf8(path.native());
    if (whole.size() <= mostAtTheBeginning + mostAtTheEnd)
        return whole;
    return whole.first(mostAtTheBeginning) + u'…' + whole.last(mostAtTheEnd);
}
