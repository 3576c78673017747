// SPDX-License-Identifier: MIT
#include "NotesProgram.h"

#include "CommandReach.h"
#include "Commands.h"
#include "Console.h"
#include "LocalNoteRepository.h"
#include "StoredNotes.h"

#include <algorithm>
#include <array>
#include <string_view>

using namespace Qt::Literals::StringLiterals;

namespace {

using Command = ExitStatus (*)(Console &, StoredNotes &, const Commands::Words &);

struct NamedCommand {
    std::string_view name;
    Command command;
};

constexpr std::array commands{
    NamedCommand{"add", &Commands::add},         NamedCommand{"list", &Commands::list},
    NamedCommand{"search", &Commands::search},   NamedCommand{"show", &Commands::show},
    NamedCommand{"export", &Commands::exportTo}, NamedCommand{"import", &Commands::import},
    NamedCommand{"check", &Commands::check},
};

/// The table of translations has it line by line.
QString help(const Console &console)
{
    return console.text(
        u"Usage: quillmark-notes COMMAND [ARGUMENT]…\n"
        "\n"
        "Adds to Quillmark’s notes, finds and copies them, beside its window or without.\n"
        "\n"
        "  add [TEXT]…          saves a note, without TEXT from the standard input\n"
        "  list                 lists the notes, newest first\n"
        "  search WORD…         lists the notes that hold the words\n"
        "  show ID              prints one note; the beginning of ID is enough\n"
        "  export FOLDER        copies every note into FOLDER\n"
        "  import FILE…         saves each text file as a note\n"
        "  check                says what is wrong with the notes; changes nothing\n"
        "\n"
        "  --json               with list, search and show: as JSON\n"
        "  --repair             with check: takes copies of notes in as notes; asks first\n"
        "  --yes                with check --repair: does not ask\n"
        "  --version            prints the version and ends\n"
        "  --help               prints this and ends\n"_s);
}

ExitStatus run(Console &console, std::string_view name, const Commands::Words &words)
{
    if (name == "--help" || name == "help") {
        console.write(help(console));
        return ExitStatus::done;
    }
    if (name == "--version") {
        const std::string confinement = confineCommand({}).description();
        console.write("quillmark-notes " QUILLMARK_VERSION "\n" + confinement + '\n');
        return ExitStatus::done;
    }
    const auto found = std::ranges::find(commands, name, &NamedCommand::name);
    if (found == commands.end())
        return Commands::refuseUsage(console);
    StoredNotes notes(LocalNoteRepository::defaultFileURL());
    return found->command(console, notes, words);
}

} // namespace

ExitStatus Commands::refuseUsage(const Console &console)
{
    console.tell(console.text(u"That is not how it is called. See: quillmark-notes --help"_s));
    return ExitStatus::usage;
}

ExitStatus runNotesProgram(int argumentCount, char **arguments)
{
    Console console;
    if (argumentCount < 2)
        return Commands::refuseUsage(console);
    std::string_view name(arguments[1]);
    Commands::Words words(arguments + 2, arguments + argumentCount);
    // What follows "--" is no option, whatever it looks like.
    if (!words.empty() && words.front() == "--help")
        name = "--help";
    if (const auto end = std::ranges::find(words, "--"); end != words.end())
        words.erase(end);
    const ExitStatus status = run(console, name, words);
    if (const auto complaint = console.finish()) {
        console.complain(*complaint);
        return status == ExitStatus::done ? complaint->status : status;
    }
    return status;
}
