// SPDX-License-Identifier: MIT
#pragma once

#include "FolderSurvey.h"
#include "TakeInPlan.h"

#include <QSet>
#include <optional>
#include <string>
#include <vector>

/// Takes what beside the notes holds texts of the user's into the notes: conflict copies, drafts
/// without a note, recovery copies, and whatever else keeps the folder from being loaded.
///
/// The identifier of a note that is made is a name-based UUID (version 5) of that of the note which
/// a file is a copy of, and the file's bytes: whoever takes in the same file makes the same note.
/// So it may be done again after it was stopped at any moment, and on two computers.
///
/// The data folder must be claimed while this lives.
class TakeIn {
public:
    /// Reads everything, and changes nothing. Throws a FileError, RepositoryError::invalidMarkdown
    /// for a folder of another format, and RepositoryError::recoveryRequired where there are
    /// recovery copies but no notes, and none of them is all of the notes.
    explicit TakeIn(const Directory &data);
    TakeIn(const TakeIn &) = delete;
    TakeIn &operator=(const TakeIn &) = delete;

    [[nodiscard]] const TakeInPlan &plan() const noexcept { return m_plan; }

    /// First the notes are made and put on the disk; then each original is put away into a new
    /// folder below the one that is given, which is made where it is missing, and named after the
    /// time. Where they are. Throws a FileError, and RepositoryError::externalChange about a file
    /// that another program changed since it was read; nothing is lost then, and what was done so
    /// far stays.
    std::filesystem::path perform(const std::filesystem::path &stateFolder);

private:
    enum class Fate : std::uint8_t { blank, there, made, restored };

    /// A text that is no note yet.
    struct Text {
        /// Whose copy it is; null for that of nobody.
        QUuid about;

        /// What its header says; otherwise the body is all of it, and the times are the file's.
        Note note;
        bool hasHeader = false;
        std::string bytes;

        /// Whether it becomes the note that it is a copy of where that is gone.
        bool mayRestore = false;

        /// Of a recovery copy: another time alone makes no other text of it.
        bool isRecovered = false;
        std::size_t step = 0;
        std::optional<Fate> fate;
    };

    /// What is to be put away.
    struct Original {
        const Directory *folder;
        std::string name;
        FileStatus status;
        const char *subFolder;
        bool isRecoveryCopy;
    };

    [[nodiscard]] std::vector<std::string> recoveryCopies() const;
    [[nodiscard]] bool openFolder();
    void collectStrays(Section section);
    void collectStray(const FolderSurvey::Stray &stray);
    void collectRecoveryCopy(const std::string &name);
    void collectFolder(const Directory &folder, Section section, std::size_t step);
    [[nodiscard]] std::optional<Text> readText(const Directory &folder, const char *name,
                                               Section section) const;
    std::optional<std::size_t> addStep(const Directory &folder, const std::string &name,
                                       const char *subFolder, Message what);

    void restoreMissing();
    void makeNotes();
    [[nodiscard]] Fate fateOf(const Text &text) const;
    void make(Note note);
    void checkRoom() const;
    void tellOutcomes();
    void tellOutcome(std::size_t step);

    const Directory &m_data;
    std::optional<NoteFolder> m_folder;

    /// The recovery copy that is all of the notes there is.
    std::string m_onlyCopy;
    std::optional<FolderSurvey> m_survey;

    /// The notes that there are, and those that are to be made.
    QHash<QUuid, Note> m_known;
    QHash<QUuid, QString> m_drafts;
    QSet<QString> m_bodies;

    /// What the names of files stand for that are no notes, but in the place of one.
    QSet<QUuid> m_taken;
    std::vector<Text> m_texts;
    std::vector<Original> m_originals;
    QList<Note> m_made;
    TakeInPlan m_plan;
};
