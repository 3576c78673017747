// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "CommandReach.h"
#include "Console.h"
#include "NoteFolder.h"
#include "ProgressLine.h"
#include "SignalDelay.h"
#include "StoredNotes.h"
#include "UserFolders.h"
#include "UserText.h"
#include "Utf8.h"

#include <array>
#include <cerrno>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

std::string joined(const Commands::Words &words)
{
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

/// All that comes from there; a little more than a note may have is enough to refuse it. Nothing
/// when it cannot be read.
std::optional<std::string> readInput()
{
    std::string text;
    std::array<char, 65536> some;
    while (text.size() <= NoteFolder::largestFile) {
        const ssize_t count = ::read(STDIN_FILENO, some.data(), some.size());
        if (count == 0)
            return text;
        if (count < 0 && errno != EINTR)
            return std::nullopt;
        text.append(some.data(), static_cast<std::size_t>(std::max<ssize_t>(0, count)));
    }
    return text;
}

} // namespace

ExitStatus Commands::add(Console &console, StoredNotes &notes, const Words &words)
{
    const auto refuse = [&](ExitStatus status, const QString &sentence) {
        console.complain({status, {sentence, {}}, std::nullopt});
        return status;
    };
    if (words.empty() && ::isatty(STDIN_FILENO) == 1)
        console.tell(console.text(u"Type the note, then press Ctrl+D."_s));
    const std::optional<std::string> bytes = words.empty() ? readInput() : joined(words);
    // Made now: there is no right to do so afterwards.
    makeUserFolder(notes.dataFolder());
    confineCommand({notes.dataFolder()});
    if (!bytes)
        return refuse(ExitStatus::file, u"The standard input could not be read."_s);
    if (bytes->size() > NoteFolder::largestFile)
        return refuse(ExitStatus::limits, u"The text is too large for a note."_s);
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(*bytes);
    if (!text)
        return refuse(ExitStatus::notUtf8, u"The text is not UTF-8."_s);
    if (isBlank(*text))
        return refuse(ExitStatus::blank, u"There is no text to save."_s);

    const Timestamp now = Timestamp::now();
    // Trimmed, as the window does it.
    const Note note{QUuid::createUuid(), text->trimmed().toString(), now, now};
    const SignalDelay untilItIsDone;
    const auto complaint = [&] {
        const ProgressLine progress(console, u"Saving the note…"_s);
        return notes.add({note});
    }();
    if (complaint) {
        console.complain(*complaint);
        return complaint->status;
    }
    console.writePath(notes.pathOf(note));
    console.flush();
    return ExitStatus::done;
}
