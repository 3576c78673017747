// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"
#include "Neighbour.h"
#include "Note.h"
#include "NoteFolder.h"

#include <QHash>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The notes and drafts of a Markdown folder, and each file that keeps them from being loaded:
/// what a load reads, but it does not end at the first file that is wrong.
class FolderSurvey {
public:
    /// A file in "Notes" or "Drafts" that is none of the notes, and is refused or a conflict copy.
    struct Stray {
        Section section;
        std::string name;
        FileKind kind;

        /// Why a load refuses it; nothing for what it passes over.
        std::optional<Message> refusal;

        /// Why it could not be read at all, if so. It may well be a note then.
        std::optional<Failure> failure;

        /// Whose draft it would be, if it is one of a note that is not there.
        std::optional<QUuid> orphanOf;
    };

    /// Reads every file. Throws a FileError for a folder that cannot be listed and for more text
    /// than the notes may have.
    explicit FolderSurvey(const NoteFolder &folder);

    [[nodiscard]] const QHash<QUuid, Note> &notes() const noexcept { return m_notes; }

    /// Under the null identifier the text of the capture screen.
    [[nodiscard]] const QHash<QUuid, QString> &drafts() const noexcept { return m_drafts; }

    /// Of all of them together, in bytes.
    [[nodiscard]] std::size_t textSize() const noexcept { return m_total; }

    /// By section, then by ascending name.
    [[nodiscard]] const std::vector<Stray> &strays() const noexcept { return m_strays; }

private:
    void look(Section section);
    void lookAt(Section section, const char *name, FileKind kind);
    [[nodiscard]] std::optional<Message> takeNote(const char *name, QStringView text);
    [[nodiscard]] std::optional<Message> takeDraft(const char *name, QStringView text);

    const NoteFolder &m_folder;
    QHash<QUuid, Note> m_notes;
    QHash<QUuid, QString> m_drafts;
    std::vector<Stray> m_strays;
    std::string m_bytes;
    std::size_t m_total = 0;
};
