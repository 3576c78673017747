// SPDX-License-Identifier: MIT
#pragma once

#include "FileError.h"
#include "JournalFile.h"
#include "Note.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

class Directory;
class Disk;

/// What was typed and is not saved, in a file of the program's own, so that neither a sudden end
/// of the program nor notes that cannot be saved take it along.
///
/// Each draft is kept with a mark of the stored text from which it went on. Where another text
/// stands there at the next start, another program wrote it, and both are shown. What a save makes
/// of a draft is noted before the save, so that its text is told from another program's. The file
/// goes only when a save holds the text.
class TypingJournal {
public:
    /// The folders are tried in turn: the file is in the first that takes it. Touches no file.
    TypingJournal(Disk &disk, std::vector<std::filesystem::path> folders,
                  const std::filesystem::path &dataFolder);

    /// How the names of all files begin that belong to a data folder.
    [[nodiscard]] static std::string prefixOf(const std::filesystem::path &dataFolder);

    /// Puts what is kept into the notes as they were loaded. What cannot be read is left alone.
    void restore(NoteSnapshot &snapshot);

    /// Keeps the drafts that differ from the saved ones, unless they are kept already. Not synced.
    /// Throws a FileError when no folder takes them.
    void keep(const NoteSnapshot &typed, const NoteSnapshot &saved, const QUuid &captureId);

    /// To be called when a save is about to be done. What goes wrong here goes unnoticed.
    void prepareSave(const NoteSnapshot &next, const NoteSnapshot &saved);

    /// Makes what is kept outlast a power cut. Throws a FileError.
    void sync();

    /// From now on keeps in a file of its own and lets those be that there were: another program
    /// has the notes, and has found them, too.
    void separate();

    /// Removes what was kept or restored, since it is saved.
    void forget() noexcept;

    /// Whether the drafts that restore() gave are in no stored note.
    [[nodiscard]] bool hasRestored() const noexcept { return m_hasRestored; }

    /// With which identifier the text of the capture screen was kept; absent when none is kept.
    [[nodiscard]] std::optional<QUuid> captureId() const noexcept { return m_captureId; }

    /// Where it is kept; absent when nothing is.
    [[nodiscard]] std::optional<std::filesystem::path> path() const;

    /// The file or folder that restore() could not read, if any.
    [[nodiscard]] const std::optional<FileError> &leftAlone() const noexcept { return m_leftAlone; }

private:
    /// A file that goes with forget().
    struct Place {
        std::filesystem::path folder;
        std::string name;

        friend bool operator==(const Place &, const Place &) = default;
    };

    /// A file that was read, and the place of its folder in the list.
    struct Found {
        std::string name;
        std::size_t folder;
        JournalFile file;
    };

    void read(std::size_t place, std::vector<Found> &files);
    void readOlder(NoteSnapshot &snapshot, const NoteSnapshot &saved);
    [[nodiscard]] static bool isOver(const TypedDraft &draft, const QUuid &captureId,
                                     const NoteSnapshot &saved);
    static void putInto(NoteSnapshot &snapshot, const NoteSnapshot &saved, const TypedDraft &draft);
    [[nodiscard]] TextMark markOf(const QString &key, const std::optional<QString> &base);
    [[nodiscard]] bool isInPlace() const;
    void write(JournalFile file);
    void takeBack();
    [[nodiscard]] Result<void> tryToWrite(const std::filesystem::path &folder,
                                          const std::string &bytes);
    void remember(const Place &place);
    void removeOthers() noexcept;
    template <typename Predicate>
    Result<void> remove(Predicate isKept) noexcept;

    Disk &m_disk;
    const std::vector<std::filesystem::path> m_folders;
    const std::filesystem::path m_dataFolder;

    const std::string m_prefix;

    /// What this program calls its own: that which it took over, or a new one.
    std::string m_name;

    /// What it holds.
    JournalFile m_file;
    std::optional<QUuid> m_captureId;

    /// Where it is, as the place in the list of folders.
    std::optional<std::size_t> m_folder;

    /// A stored text, shared with the notes, and its mark.
    struct Marked {
        QString text;
        TextMark mark;
    };

    /// Of the texts from which the drafts go on.
    std::map<QString, Marked> m_marks;

    /// The files that there may be, the current one among them.
    std::vector<Place> m_places;

    bool m_isSeparate = false;
    bool m_hasRestored = false;
    std::optional<FileError> m_leftAlone;
};
