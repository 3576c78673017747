// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QUrl>
#include <chrono>
#include <optional>

/// Where the notes are kept. Loading and saving throw a StorageError when they fail, and have then
/// changed nothing.
class NoteRepository {
public:
    NoteRepository() = default;
    NoteRepository(const NoteRepository &) = delete;
    NoteRepository &operator=(const NoteRepository &) = delete;
    virtual ~NoteRepository() = default;

    /// The folder in which the user can see the note files; absent for repositories without files.
    [[nodiscard]] virtual std::optional<QUrl> notesFolderURL() const { return std::nullopt; }

    /// The whole stored state.
    [[nodiscard]] virtual NoteSnapshot load() = 0;

    /// Replaces the whole stored state. On return it is safe on the disk.
    virtual void save(const NoteSnapshot &snapshot) = 0;

    /// Does some of what the last save left for later, for about this long. After how long it wants
    /// to be called again; nothing when that was all. May throw as well.
    [[nodiscard]] virtual std::optional<std::chrono::milliseconds>
    tidy(std::chrono::milliseconds /*most*/)
    {
        return std::nullopt;
    }

    /// Keeps the drafts from a sudden end of the program until they are saved: the next load()
    /// gives them. Quick, and no stored note changes. May throw as well.
    ///
    /// The identifier is that of the note which the text of the capture screen would become. Where
    /// it is among the stored notes by then, that text is out of date.
    virtual void keepTyped(const NoteSnapshot & /*snapshot*/, const QUuid & /*captureId*/) {}

    /// With which identifier the text of the capture screen was kept that the last load() gave;
    /// absent when it gave none.
    [[nodiscard]] virtual std::optional<QUuid> captureId() const { return std::nullopt; }
};
