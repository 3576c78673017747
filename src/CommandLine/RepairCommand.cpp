// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "CommandReach.h"
#include "Console.h"
#include "LocalNoteRepository.h"
#include "Note.h"
#include "ProgressLine.h"
#include "SignalDelay.h"
#include "StoredNotes.h"
#include "UserFolders.h"

#include <iostream>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

using Step = TakeInPlan::Step;

/// For scripts, the same in every language.
QLatin1StringView wordFor(Step::Outcome outcome)
{
    switch (outcome) {
    case Step::Outcome::note:
        return "note"_L1;
    case Step::Outcome::restored:
        return "restored"_L1;
    case Step::Outcome::putAway:
        return "kept"_L1;
    }
    Q_UNREACHABLE();
}

void print(Console &console, const Step &step)
{
    const QString what = harmless(console.text(step.what), false);
    const QString becomes = harmless(console.text(step.becomes), false);
    if (!console.isTerminal()) {
        console.write(wordFor(step.outcome) + u'\t' + shown(step.file) + u'\t' + what + u' ' +
                      becomes + u'\n');
        return;
    }
    console.write(shown(step.file), Console::Look::strong);
    console.write(u"\n    "_s + what + u"\n    "_s + becomes + u'\n');
}

bool canAsk(const Console &console)
{
    return console.isTerminal() && ::isatty(STDIN_FILENO) == 1;
}

/// Asks on the terminal. What is neither yes nor the end of a line of it is no.
bool isConfirmed(Console &console, const TakeInPlan &plan)
{
    console.write(console.text(
        Message{u"New notes: %d. The files listed are then kept in “%@”. Take them in? [y/N] "_s,
                {plan.noteCount, shown(plan.originals)}}));
    console.flush();
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

ExitStatus complain(const Console &console, const Complaint &complaint)
{
    console.complain(complaint);
    return complaint.status;
}

} // namespace

ExitStatus Commands::repair(Console &console, StoredNotes &notes, bool isAnswered)
{
    // The originals are kept there. Without notes there are none, and nothing is made.
    const std::filesystem::path state = LocalNoteRepository::defaultJournalFolders().front();
    std::error_code ignored;
    if (std::filesystem::exists(notes.dataFolder(), ignored))
        makeUserFolder(state);
    confineCommand({notes.dataFolder(), state});
    TakeInPlan plan;
    std::optional<Complaint> complaint;
    {
        const ProgressLine progress(console, u"Looking through the notes…"_s);
        complaint = notes.planTakeIn(plan);
    }
    if (complaint)
        return complain(console, *complaint);
    for (const Step &step : plan.steps)
        print(console, step);
    if (plan.isEmpty()) {
        if (console.isTerminal())
            console.write(console.text(u"There is nothing that could be taken in."_s) + u'\n');
        return ExitStatus::done;
    }
    if (!isAnswered && !(canAsk(console) && isConfirmed(console, plan))) {
        console.tell(
            console.text(u"Nothing was changed. With --yes the files listed are taken in."_s));
        return ExitStatus::unanswered;
    }

    std::filesystem::path originals;
    {
        const SignalDelay untilItIsDone;
        const ProgressLine progress(console, u"Taking in copies…"_s);
        complaint = notes.takeIn(plan, originals);
    }
    if (complaint)
        return complain(console, *complaint);
    const QString sentence =
        console.text(Message{u"The files themselves are kept in “%@”."_s, {shown(originals)}});
    console.write(console.isTerminal()
                      ? sentence + u'\n'
                      : "originals"_L1 + u'\t' + shown(originals) + u'\t' + sentence + u'\n');
    // Another file may refuse the notes yet, for which nothing is known to do.
    NoteSnapshot snapshot;
    complaint = notes.read(snapshot);
    return complaint ? complain(console, *complaint) : ExitStatus::done;
}
