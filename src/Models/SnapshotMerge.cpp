// SPDX-License-Identifier: MIT
#include "SnapshotMerge.h"

#include "NoteId.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Of a text that was the same on both sides: what both changes make of it.
QString mergedText(const QString &last, const QString &ours, const QString &theirs)
{
    if (ours == last || ours == theirs)
        return theirs;
    return theirs == last ? ours : joined(ours, theirs);
}

bool holds(const NoteSnapshot &snapshot, const QString &key)
{
    return std::ranges::any_of(snapshot.notes, [id = parseId(QStringView(key))](const Note &note) {
        return note.id == id;
    });
}

} // namespace

QString joined(const QString &first, const QString &second)
{
    if (first.trimmed().isEmpty() || second.trimmed().isEmpty())
        return first.trimmed().isEmpty() ? second : first;
    const QString between = first.endsWith(u"\n\n") ? u""_s
                            : first.endsWith(u'\n') ? u"\n"_s
                                                    : u"\n\n"_s;
    return first + between + second;
}

NoteSnapshot merged(const NoteSnapshot &last, const NoteSnapshot &ours, const NoteSnapshot &theirs)
{
    NoteSnapshot result = theirs;
    result.captureDraft = mergedText(last.captureDraft, ours.captureDraft, theirs.captureDraft);
    for (auto draft = ours.editingDrafts.begin(); draft != ours.editingDrafts.end(); ++draft) {
        const auto before = last.editingDrafts.find(draft.key());
        if (before != last.editingDrafts.end() && *before == *draft)
            continue;
        const QString lastText = before != last.editingDrafts.end() ? *before : QString();
        if (!holds(theirs, draft.key()))
            result.captureDraft = joined(result.captureDraft, *draft);
        else if (const auto other = theirs.editingDrafts.find(draft.key());
                 other != theirs.editingDrafts.end())
            result.editingDrafts[draft.key()] = mergedText(lastText, *draft, *other);
        else
            result.editingDrafts[draft.key()] = *draft;
    }
    return result;
}
