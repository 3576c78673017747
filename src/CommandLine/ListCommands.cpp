// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "CommandReach.h"
#include "Console.h"
#include "DateText.h"
#include "MemoryNoteRepository.h"
#include "NoteId.h"
#include "NoteJson.h"
#include "NoteStore.h"
#include "ProgressLine.h"
#include "StoredNotes.h"
#include "Utf8.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// So many digits of an identifier tell a person's notes apart; where they do not, "show" says so.
constexpr int shownDigits = 8;

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

/// Takes "--json" out of the words.
bool takesJson(Commands::Words &words)
{
    return std::erase(words, "--json") > 0;
}

std::optional<Complaint> readAll(const Console &console, const StoredNotes &notes,
                                 NoteSnapshot &snapshot)
{
    confineCommand({}, {notes.dataFolder()});
    const ProgressLine progress(console, u"Reading notes…"_s);
    return notes.read(snapshot);
}

void printLine(Console &console, const Note &note)
{
    const QString id = canonicalText(note.id);
    const QString title = harmless(note.title(), false);
    if (!console.isTerminal()) {
        console.write(id + u'\t' + note.updatedAt.toIso8601() + u'\t' + title + u'\n');
        return;
    }
    const QString date =
        dateText(note.updatedAt, DateStyle::yearMonthDayAndTime, console.language());
    const QString front = id.left(shownDigits) + u"  "_s + date + u"  "_s;
    // Wide characters of a date take two cells.
    const auto wide = std::ranges::count_if(front, [](QChar c) { return c.unicode() > 0x2E7F; });
    console.write(front, Console::Look::quiet);
    console.write(cutToWidth(title, console.width() - int(front.size()) - int(wide)) + u'\n');
}

ExitStatus print(Console &console, const QList<Note> &notes, bool isJson)
{
    if (isJson) {
        console.write(viewOf(jsonOf(notes) + '\n'));
        return ExitStatus::done;
    }
    for (const Note &note : notes)
        printLine(console, note);
    return ExitStatus::done;
}

/// The notes that match, in the window's order, and found as the window finds them. All of them for
/// a blank query.
ExitStatus printMatching(Console &console, const StoredNotes &notes, const QString &query,
                         bool isJson)
{
    NoteSnapshot snapshot;
    if (const auto complaint = readAll(console, notes, snapshot)) {
        console.complain(*complaint);
        return complaint->status;
    }
    const NoteStore store(std::make_unique<MemoryNoteRepository>(std::move(snapshot)));
    return print(console, store.matching(query).toList(), isJson);
}

} // namespace

ExitStatus Commands::list(Console &console, StoredNotes &notes, const Words &words)
{
    Words rest = words;
    const bool isJson = takesJson(rest);
    return rest.empty() ? printMatching(console, notes, {}, isJson) : refuseUsage(console);
}

ExitStatus Commands::search(Console &console, StoredNotes &notes, const Words &words)
{
    Words rest = words;
    const bool isJson = takesJson(rest);
    std::string query;
    for (const std::string &word : rest)
        query += (query.empty() ? "" : " ") + word;
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(query);
    if (!text) {
        console.complain({ExitStatus::notUtf8, {u"The text is not UTF-8."_s, {}}, std::nullopt});
        return ExitStatus::notUtf8;
    }
    if (rest.empty())
        return refuseUsage(console);
    return printMatching(console, notes, text->toString(), isJson);
}

ExitStatus Commands::show(Console &console, StoredNotes &notes, const Words &words)
{
    Words rest = words;
    const bool isJson = takesJson(rest);
    if (rest.size() != 1 || rest.front().empty())
        return refuseUsage(console);
    NoteSnapshot snapshot;
    if (const auto complaint = readAll(console, notes, snapshot)) {
        console.complain(*complaint);
        return complaint->status;
    }
    const QString beginning = QString::fromStdString(rest.front()).toUpper();
    QList<Note> found;
    for (const Note &note : std::as_const(snapshot.notes)) {
        if (canonicalText(note.id).startsWith(beginning))
            found << note;
    }
    if (found.size() != 1) {
        const bool isNone = found.isEmpty();
        const Complaint complaint{isNone ? ExitStatus::unknown : ExitStatus::ambiguous,
                                  {isNone ? u"There is no note “%@”."_s
                                          : u"“%@” is the beginning of more than one note."_s,
                                   {harmless(QString::fromStdString(rest.front()), false)}},
                                  std::nullopt};
        console.complain(complaint);
        return complaint.status;
    }
    if (isJson)
        console.write(viewOf(jsonOf(found.first()) + '\n'));
    else if (console.isTerminal())
        console.write(harmless(found.first().body, true) + u'\n');
    else
        console.write(found.first().body);
    return ExitStatus::done;
}
