// SPDX-License-Identifier: MIT
#pragma once

#include "Attempt.h"
#include "Note.h"
#include "SystemDisk.h"
#include "TakeInPlan.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

class Directory;
class LocalNoteRepository;

/// The user's notes, as a program reaches them that comes and goes beside the window.
///
/// Reading needs neither the folder's lock nor the window, and never shows a half state. What is
/// added goes through the window where one runs, and otherwise into the folder, under its lock. No
/// call throws.
class StoredNotes {
public:
    /// For how long it is tried to reach notes that another program has, and to read notes that
    /// another program is saving again and again.
    static constexpr std::chrono::milliseconds longestTry{2000};

    /// For how long the window may take to answer.
    static constexpr std::chrono::milliseconds longestAnswer{30'000};

    /// The data folder is the one that holds the file.
    explicit StoredNotes(std::filesystem::path fileURL);
    ~StoredNotes();

    [[nodiscard]] std::filesystem::path dataFolder() const { return m_fileURL.parent_path(); }

    /// Reads all of them. A complaint when they cannot be read.
    [[nodiscard]] std::optional<Complaint> read(NoteSnapshot &snapshot) const;

    /// Adds the notes, all or none. Once there is no complaint they are on the disk. A single one
    /// is added without reading the others.
    [[nodiscard]] std::optional<Complaint> add(const QList<Note> &notes);

    /// What takeIn() would do. From then on nobody else has the notes, as long as this lives; a
    /// complaint where another program has them.
    [[nodiscard]] std::optional<Complaint> planTakeIn(TakeInPlan &plan);

    /// Takes what was shown into the notes. Where the originals are is put into the target.
    [[nodiscard]] std::optional<Complaint> takeIn(const TakeInPlan &shown,
                                                  std::filesystem::path &target);

    /// Where the file of a note is that was added.
    [[nodiscard]] std::filesystem::path pathOf(const Note &note) const;

    /// Whether no other program has the folder for itself at this moment.
    [[nodiscard]] bool isFree() const;

private:
    enum class Road {
        done,   ///< With or without a complaint.
        later,  ///< To be tried again.
        closed, ///< Not this way.
    };

    /// What came of one try.
    struct Step {
        Road road = Road::closed;
        std::optional<Complaint> complaint;
    };

    [[nodiscard]] Step tryToAdd(const QList<Note> &notes, bool isLastTry);
    [[nodiscard]] Step addThere(const QList<Note> &notes) const;
    [[nodiscard]] Step addOneHere(const Directory &data, const Note &note);
    [[nodiscard]] Step addAllHere(const QList<Note> &notes);
    [[nodiscard]] Complaint inUse() const;

    const std::filesystem::path m_fileURL;
    mutable SystemDisk m_disk;

    /// While copies are taken in.
    std::unique_ptr<LocalNoteRepository> m_claimed;
};
