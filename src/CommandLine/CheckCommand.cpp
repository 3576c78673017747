// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "CommandReach.h"
#include "Console.h"
#include "FileError.h"
#include "FolderCheck.h"
#include "ProgressLine.h"
#include "StoredNotes.h"

#include <algorithm>
#include <chrono>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Finding = FolderCheck::Finding;

/// So long a save may have its stage in the folder.
constexpr auto longestSave = 1s;

/// For scripts, the same in every language.
QLatin1StringView wordFor(Finding::Kind kind)
{
    switch (kind) {
    case Finding::Kind::refused:
        return "refused"_L1;
    case Finding::Kind::recoveryCopy:
        return "recovery"_L1;
    case Finding::Kind::stage:
        return "stage"_L1;
    case Finding::Kind::difference:
        return "difference"_L1;
    case Finding::Kind::editorLock:
        return "lock"_L1;
    case Finding::Kind::conflictCopy:
        return "conflict"_L1;
    case Finding::Kind::backup:
        return "backup"_L1;
    case Finding::Kind::syncMarker:
        return "marker"_L1;
    case Finding::Kind::other:
        return "other"_L1;
    }
    Q_UNREACHABLE();
}

void print(Console &console, const Finding &finding)
{
    const QString sentence = harmless(console.text(finding.message), false);
    if (!console.isTerminal()) {
        console.write(wordFor(finding.kind) + u'\t' + shown(finding.path) + u'\t' + sentence +
                      u'\n');
        return;
    }
    const bool isWrong = FolderCheck::isWrong(finding.kind);
    console.write(shown(finding.path), isWrong ? Console::Look::strong : Console::Look::plain);
    console.write(u"\n    "_s + sentence + u'\n');
}

/// Why the notes cannot be loaded, if so: each file for itself. Recovery copies are told elsewhere.
std::vector<Finding> refusals(const FolderCheck &check, const StoredNotes &notes)
{
    NoteSnapshot snapshot;
    const std::optional<Complaint> complaint = notes.read(snapshot);
    if (!complaint)
        return {};
    std::vector<Finding> findings;
    // Of more than can be looked through the complaint tells as well as anything.
    static_cast<void>(attempt([&] { findings = check.refused(); }));
    if (!findings.empty() || complaint->status == ExitStatus::recoveryCopy)
        return findings;
    return {{Finding::Kind::refused, complaint->place.value_or(notes.dataFolder()),
             complaint->message}};
}

/// Recovery copies and stages that are none of a save under way: those are gone soon.
std::vector<std::string> lastingNames(const FolderCheck &check, const StoredNotes &notes)
{
    const auto deadline = std::chrono::steady_clock::now() + longestSave;
    std::vector<std::string> names = check.hiddenNames();
    while (!names.empty() && !notes.isFree() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(20ms);
        const std::vector<std::string> now = check.hiddenNames();
        std::erase_if(
            names, [&](const std::string &name) { return !std::ranges::binary_search(now, name); });
    }
    return names;
}

} // namespace

ExitStatus Commands::check(Console &console, StoredNotes &notes, const Words &words)
{
    Words rest = words;
    const bool isRepair = std::erase(rest, "--repair") > 0;
    const bool isAnswered = std::erase(rest, "--yes") > 0;
    if (!rest.empty() || (isAnswered && !isRepair))
        return refuseUsage(console);
    if (isRepair)
        return repair(console, notes, isAnswered);
    confineCommand({}, {notes.dataFolder()});
    std::vector<Finding> findings;
    std::error_code ignored;
    const bool isThere = std::filesystem::exists(notes.dataFolder(), ignored);
    const auto failure = attempt([&] {
        if (!isThere)
            return;
        const ProgressLine progress(console, u"Looking through the notes…"_s);
        SystemDisk disk;
        const Result<Directory> opened = Directory::open(disk, notes.dataFolder());
        if (!opened) {
            findings.push_back({Finding::Kind::refused, notes.dataFolder(),
                                FileError(notes.dataFolder(), opened.failure()).message()});
            return;
        }
        const FolderCheck check(*opened);
        for (const auto &more :
             {refusals(check, notes), check.hidden(lastingNames(check, notes)), check.neighbours()})
            findings.insert(findings.end(), more.begin(), more.end());
    });
    if (failure) {
        console.complain(*failure);
        return failure->status;
    }
    for (const Finding &finding : findings)
        print(console, finding);
    const bool isWrong = std::ranges::any_of(
        findings, [](const Finding &finding) { return FolderCheck::isWrong(finding.kind); });
    if (findings.empty() && console.isTerminal())
        console.write(console.text(u"Nothing is wrong with the notes."_s) + u'\n');
    return isWrong ? ExitStatus::wrong : ExitStatus::done;
}
