// SPDX-License-Identifier: MIT
#include "Neighbour.h"

#include "FileNames.h"

#include <QRegularExpression>
#include <QString>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

using Engine = ConflictName::Engine;

/// Bytes as characters, each for itself, so that a name of any bytes survives the way back.
QString charactersOf(std::string_view name)
{
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

QRegularExpression pattern(QLatin1StringView text)
{
    return QRegularExpression(text, QRegularExpression::CaseInsensitiveOption |
                                        QRegularExpression::DotMatchesEverythingOption);
}

bool matches(const QString &name, const QRegularExpression &expression)
{
    return expression.match(name).hasMatch();
}

bool isLock(const QString &name)
{
    // LibreOffice, then Vim: one for each session that has the file open.
    static const QRegularExpression lock = pattern("^\\.~lock\\..*#$|^\\..*\\.sw[a-z]$"_L1);
    return matches(name, lock);
}

bool isBackup(const QString &name)
{
    static const QRegularExpression backup =
        pattern("~$|\\.(bak|orig|old|backup)$|^#.*#$|\\.(bak|orig|old|backup)\\.md$"_L1);
    return matches(name, backup);
}

bool isSyncMarker(const QString &name)
{
    static const QRegularExpression marker =
        pattern("^\\.(stfolder|stversions|stignore|git|hg|svn|sync|dropbox|dropbox\\.cache|"
                "rclone.*|unison.*|(next|own)cloudsync\\.log.*|_?sync_.*\\.db.*)$|"
                "^RCLONE_TEST$"_L1);
    return matches(name, marker);
}

struct Form {
    Engine engine;
    QRegularExpression expression;
};

/// In each the first group and the last are what is left of the name.
const std::array<Form, 5> &forms()
{
    static const std::array<Form, 5> all{
        {{Engine::syncthing,
          pattern("^(.+)\\.sync-conflict-\\d{8}-\\d{6}(?:-[A-Z0-9]+)?(\\.[^.]*|)$"_L1)},
         {Engine::nextcloud,
          pattern("^(.+?) \\(conflicted copy [^()]*\\d{4}-\\d{2}-\\d{2} \\d{6}\\)(\\.[^.]*|)$"_L1)},
         {Engine::nextcloud, pattern("^(.+)_conflict-(?:[^.]*-)?\\d{8}-\\d{6}(\\.[^.]*|)$"_L1)},
         {Engine::dropbox, pattern("^(.+?) \\(.*conflicted copy.*\\)(\\.[^.]*|)$"_L1)},
         {Engine::rclone, pattern("^(.+?)(?:\\.\\.path[12]$|\\.path[12](?=\\.[^.]*$|$)|"
                                  "\\.conflict\\d+(?=\\.[^.]*$|$))(\\.[^.]*|)$"_L1)}}};
    return all;
}

} // namespace

const char *ConflictName::nameOf(Engine engine) noexcept
{
    switch (engine) {
    case Engine::syncthing:
        return "Syncthing";
    case Engine::nextcloud:
        return "Nextcloud";
    case Engine::dropbox:
        return "Dropbox";
    case Engine::rclone:
        return "rclone";
    }
    Q_UNREACHABLE();
}

std::optional<ConflictName> conflictNameOf(std::string_view name)
{
    std::optional<ConflictName> found;
    QString rest = charactersOf(name);
    for (bool isFound = true; isFound;) {
        isFound = false;
        for (const Form &form : forms()) {
            const QRegularExpressionMatch match = form.expression.match(rest);
            if (!match.hasMatch())
                continue;
            rest = match.captured(1) + match.captured(2);
            found = ConflictName{form.engine, rest.toLatin1().toStdString()};
            isFound = true;
            break;
        }
    }
    return found;
}

bool isCopyOfNote(std::string_view name)
{
    // Asked of every foreign file, pictures by the thousand. What a copy was called ended in ".md".
    bool mayBe = false;
    for (std::size_t end = 1; !mayBe && end <= name.size(); ++end)
        mayBe = FileNames::isMarkdown(name.substr(0, end));
    const std::optional<ConflictName> conflict = mayBe ? conflictNameOf(name) : std::nullopt;
    if (!conflict)
        return false;
    const FileNames::Owner owner = FileNames::parse(conflict->original);
    return owner.isCapture || owner.note;
}

Neighbour neighbourOf(std::string_view name, FileKind kind)
{
    const QString text = charactersOf(name);
    if (kind == FileKind::link && FileNames::isEditorLock(name))
        return Neighbour::editorLock;
    if (isSyncMarker(text))
        return Neighbour::syncMarker;
    if (isLock(text))
        return Neighbour::editorLock;
    if (conflictNameOf(name))
        return Neighbour::conflictCopy;
    return isBackup(text) ? Neighbour::backup : Neighbour::none;
}
