// SPDX-License-Identifier: MIT
#pragma once

#include "LocalNoteRepository.h"
#include "StopCheck.h"
#include "StopWatcher.h"

#include <array>
#include <functional>
#include <memory>

enum class Operation : std::uint8_t { load, draft, typing, capture, edit, deletion, tidy };
inline constexpr int operationCount = 7;

[[nodiscard]] const char *nameOf(Operation operation) noexcept;

/// How many stops there were, by what happened and in what.
using StopCounts = std::array<std::array<std::uint64_t, operationCount>, stopKindCount>;

/// One random life of a data folder: a user types, captures, edits and deletes, another program
/// writes into the folder, the program is closed and started again, and everything that may go
/// wrong does.
///
/// After every stop the disk is looked at as the next start would see it, and the promises of
/// docs/FORMAT.md must hold to the letter. The seed and the number decide everything.
class StorageRun {
public:
    StorageRun(std::uint64_t seed, std::uint64_t number, StopCounts &counts);

    /// Null for none: receives a line for every operation and every call.
    void setLog(std::vector<std::string> *log);

    /// Throws a BrokenPromise.
    void go();

private:
    struct Outcome {
        bool isDone = true;
        Reason reason = Reason::system;
        std::string error;
    };

    /// What another program does to one file.
    struct Edit {
        enum class Way : std::uint8_t { make, overwrite, replace, remove };
        Way way;
        std::string path;
        std::string bytes;

        /// Of a file of the notes: the note or the draft that it belongs to.
        std::optional<Note> note;
        QString draftKey;
        bool isForeign = false;
    };

    /// What is judged: an operation, and the state that it is to bring about.
    struct Subject {
        Operation operation;
        const StoredState &after;
        const std::function<void()> &action;

        /// What a save is to bring, even where it is refused.
        const NoteSnapshot &next;
    };

    void setUp();
    void fill();
    void writeOlderNotes();
    void makeForeignFiles();
    void start();
    void step();
    void letTimePass();

    void type();
    void saveDrafts();
    void keepTyped();
    void capture();
    void renewCaptureId();
    [[nodiscard]] std::unique_ptr<LocalNoteRepository> makeRepository();
    [[nodiscard]] bool isOnDisk(const NoteSnapshot &loaded) const;
    void keepScreen();
    void rememberKept(const StoredState &state);
    void saveEdit();
    void deleteNote();
    void restart();
    void tidy(bool isToTheEnd);
    void actOutside();

    void save(Operation operation, const NoteSnapshot &next);
    Outcome perform(Operation operation, const StoredState &after,
                    const std::function<void()> &action);
    static void add(Expectation &expected, const std::vector<StoredState> &states);
    [[nodiscard]] std::vector<StoredState> statesOf(const Subject &subject) const;
    void judgeStops(const Subject &subject, const Outcome &outcome);
    [[nodiscard]] bool makesOneFile(const NoteSnapshot &saved) const;
    void judgeFault(const Subject &subject, const Outcome &outcome);
    void judgeEdit(const Subject &subject, const Outcome &outcome);
    void repeat(const Subject &subject);
    void goOn(const StopCheck::Found &found, const NoteSnapshot &saved);
    void takeAsSaved();
    void lookAtFiles();
    void checkFiles(const NoteSnapshot &saved);

    [[nodiscard]] static Outcome attempt(const std::function<void()> &action);
    [[nodiscard]] StopPlan plan(Operation operation);
    [[nodiscard]] Expectation expectation(const std::vector<StoredState> &allowed) const;
    [[nodiscard]] Edit randomEdit();
    [[nodiscard]] Edit foreignEdit();
    [[nodiscard]] std::optional<Edit> editOfNotes();
    [[nodiscard]] bool isStale() const;
    [[nodiscard]] bool apply(const Edit &edit);
    static void applyTo(NoteSnapshot &snapshot, const Edit &edit);
    [[nodiscard]] QString text();
    [[nodiscard]] const Note *anyNote();
    [[nodiscard]] Timestamp time();
    void say(const std::string &line);
    void count(StopKind kind, Operation operation, std::uint64_t stops = 1);

    Dice m_dice;
    StopCounts &m_counts;
    MemoryDisk m_disk;
    StopWatcher m_watcher;
    StopCheck m_check;
    std::unique_ptr<LocalNoteRepository> m_repository;

    /// What is on the disk, and what is on the screen.
    StoredState m_state;
    NoteSnapshot m_screen;

    /// What a power cut may bring back: states that are over, while what came after them was not
    /// saved to the end.
    std::vector<StoredState> m_notYetOver;

    /// The notes as the repository last loaded or saved them.
    NoteSnapshot m_known;
    bool m_hasFolder = false;
    ForeignFiles m_foreign;

    /// Stages that an end of the program or a fault left for good, and those that were there before
    /// the operation under way.
    std::set<std::string> m_stages;
    std::set<std::string> m_namesBefore;

    /// The files of the notes before it.
    std::map<std::string, FileStatus> m_files;
    QMultiMap<QString, StoredState::Kept> m_everKept;

    StopPlan m_plan;

    /// Whether a file of what was typed is there that could not be removed with its save.
    bool m_hasOldJournal = false;

    /// Whether the program ended in the last operation and was started anew.
    bool m_hasGoneOn = false;
    std::optional<Edit> m_edit;
    std::array<std::uint32_t, operationCount> m_usualCalls{};
    int m_textCount = 0;
    int m_noteCount = 0;

    /// Of the note that the text of the capture screen will become.
    QUuid m_captureId;
    std::vector<std::string> *m_log = nullptr;
};
