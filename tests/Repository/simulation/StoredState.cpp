// SPDX-License-Identifier: MIT
#include "StoredState.h"

#include "NoteId.h"

#include <algorithm>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

const Note *find(const NoteSnapshot &snapshot, const QString &key)
{
    const auto note = std::ranges::find_if(
        snapshot.notes, [&](const Note &other) { return canonicalText(other.id) == key; });
    return note != snapshot.notes.end() ? &*note : nullptr;
}

std::string quoted(const QString &text)
{
    return '"' + text.left(40).replace(u'\n', u'|').replace(u'\r', u'<').toStdString() + '"';
}

} // namespace

QString bothTexts(const QString &first, const QString &second)
{
    if (first.trimmed().isEmpty() || second.trimmed().isEmpty())
        return first.trimmed().isEmpty() ? second : first;
    QString both = first;
    while (!both.endsWith(u"\n\n"))
        both += u'\n';
    return both + second;
}

NoteSnapshot StoredState::shown() const
{
    NoteSnapshot snapshot = saved;
    const auto show = [&](const QString &key, const Kept &draft) {
        const std::optional<QString> text = savedText(saved, key);
        if (!text)
            snapshot.captureDraft = bothTexts(snapshot.captureDraft, draft.text);
        else if (text != draft.text && (text == draft.base || !text->startsWith(draft.text)))
            setText(snapshot, key, text == draft.base ? draft.text : bothTexts(draft.text, *text));
    };
    // That of the capture screen comes first, and the texts of notes that are gone below it.
    if (const auto capture = kept.find(captureKey()); capture != kept.end())
        show(captureKey(), *capture);
    for (auto draft = kept.begin(); draft != kept.end(); ++draft) {
        if (draft.key() != captureKey())
            show(draft.key(), *draft);
    }
    return snapshot;
}

void StoredState::keep(const NoteSnapshot &typed, const NoteSnapshot &known)
{
    kept.clear();
    const auto keepDraft = [&](const QString &key, const QString &text) {
        const std::optional<QString> base = savedText(known, key);
        if (base && *base != text)
            kept[key] = {*base, text};
    };
    keepDraft(captureKey(), typed.captureDraft);
    for (auto draft = typed.editingDrafts.begin(); draft != typed.editingDrafts.end(); ++draft)
        keepDraft(draft.key(), draft.value());
}

void StoredState::prepareSave(const NoteSnapshot &next, const NoteSnapshot &known,
                              const QUuid &captureId)
{
    const bool isCaptured = std::ranges::count(next.notes, captureId, &Note::id) != 0;
    for (auto draft = kept.begin(); draft != kept.end(); ++draft) {
        const bool isCapture = draft.key() == captureKey();
        const std::optional<QString> text = savedText(next, draft.key());
        const bool isDraft = isCapture || next.editingDrafts.contains(draft.key());
        if (text && !(isCapture && isCaptured) &&
            (isDraft || text == savedText(known, draft.key())))
            draft->text = *text;
    }
}

NoteSnapshot inOrder(NoteSnapshot snapshot)
{
    std::ranges::sort(snapshot.notes, {}, &Note::id);
    return snapshot;
}

const QString &captureKey()
{
    static const QString key = u"capture"_s;
    return key;
}

std::optional<QString> savedText(const NoteSnapshot &saved, const QString &key)
{
    if (key == captureKey())
        return saved.captureDraft;
    if (const auto draft = saved.editingDrafts.find(key); draft != saved.editingDrafts.end())
        return *draft;
    const Note *note = find(saved, key);
    return note ? std::optional(note->body) : std::nullopt;
}

void setText(NoteSnapshot &snapshot, const QString &key, const QString &text)
{
    if (key == captureKey())
        snapshot.captureDraft = text;
    else
        snapshot.editingDrafts[key] = text;
}

std::vector<std::string> filesThatDiffer(const NoteSnapshot &a, const NoteSnapshot &b)
{
    std::set<std::string> files;
    if (a.captureDraft != b.captureDraft)
        files.insert("Drafts/capture.md");
    for (const auto &[one, other] : {std::pair(&a, &b), std::pair(&b, &a)}) {
        for (const Note &note : one->notes) {
            const QString key = canonicalText(note.id);
            const Note *same = find(*other, key);
            if (!same || *same != note)
                files.insert("Notes/" + key.toStdString() + ".md");
        }
        const auto &drafts = one->editingDrafts;
        for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
            const auto same = other->editingDrafts.find(draft.key());
            if (same == other->editingDrafts.end() || *same != *draft)
                files.insert("Drafts/" + draft.key().toStdString() + ".md");
        }
    }
    return {files.begin(), files.end()};
}

std::string describe(const NoteSnapshot &snapshot)
{
    std::string text;
    for (const Note &note : snapshot.notes)
        text += "    note " + canonicalText(note.id).right(4).toStdString() + ' ' +
                quoted(note.body) + ' ' + note.updatedAt.toIso8601().toStdString() + '\n';
    text += "    capture " + quoted(snapshot.captureDraft) + '\n';
    const auto &drafts = snapshot.editingDrafts;
    for (auto draft = drafts.begin(); draft != drafts.end(); ++draft)
        text += "    draft " + draft.key().right(4).toStdString() + ' ' + quoted(*draft) + '\n';
    return text;
}
