// SPDX-License-Identifier: MIT
#include "Neighbour.h"

#include "FileNames.h"

#include <QRegularExpression>
#include <QString>

using namespace Qt::Literals::StringLiterals;

namespace {

bool matches(const QString &name, QLatin1StringView pattern)
{
    return QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption)
        .match(name)
        .hasMatch();
}

bool isLock(const QString &name)
{
    // LibreOffice, then Vim: one for each session that has the file open.
    return matches(name, "^\\.~lock\\..*#$"_L1) || matches(name, "^\\..*\\.sw[a-z]$"_L1);
}

bool isConflictCopy(const QString &name)
{
    return matches(name, "\\.sync-conflict-\\d{8}-\\d{6}"_L1) ||       // Syncthing
           matches(name, "\\(.*conflicted copy.*\\)"_L1) ||            // Dropbox, Nextcloud
           matches(name, "_conflict-\\d{8}-\\d{6}"_L1) ||              // ownCloud
           matches(name, "\\.conflict\\d+(\\.|$)|\\.\\.path[12]$"_L1); // rclone
}

bool isBackup(const QString &name)
{
    return matches(name, "~$|\\.(bak|orig|old|backup)$|^#.*#$|\\.(bak|orig|old|backup)\\.md$"_L1);
}

} // namespace

Neighbour neighbourOf(std::string_view name, FileKind kind)
{
    const QString text = QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
    if (kind == FileKind::link && FileNames::isEditorLock(name))
        return Neighbour::editorLock;
    if (isLock(text))
        return Neighbour::editorLock;
    if (isConflictCopy(text))
        return Neighbour::conflictCopy;
    return isBackup(text) ? Neighbour::backup : Neighbour::none;
}
