// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"
#include "Note.h"
#include "TakeInPlan.h"

#include <QUrl>
#include <chrono>
#include <filesystem>
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

    /// Whether another program changed what is stored, or what hasCopies() tells of, since it was
    /// last read or written here. May throw as well.
    [[nodiscard]] virtual bool isChangedOutside() { return false; }

    /// The whole stored state anew, with what is typed and not stored put into it as merged() says.
    [[nodiscard]] virtual NoteSnapshot reload(const NoteSnapshot &typed) { return typed; }

    /// Whether the last load() or reload() passed over copies of notes that takeIn() would take in.
    [[nodiscard]] virtual bool hasCopies() const { return false; }

    /// Replaces the whole stored state. On return it is safe on the disk.
    virtual void save(const NoteSnapshot &snapshot) = 0;

    /// What beside the notes could be taken in by takeIn(). Reads everything. May throw as well.
    [[nodiscard]] virtual TakeInPlan planTakeIn() { return {}; }

    /// Takes in what was shown, and answers where the originals are. Throws
    /// RepositoryError::externalChange, and changes nothing, when that is no longer what there is.
    /// What is typed and what is loaded stay as they are; reload() brings the new notes.
    [[nodiscard]] virtual std::filesystem::path takeIn(const TakeInPlan & /*shown*/) { return {}; }

    /// Does some of what the last save left for later, for about this long. After how long it wants
    /// to be called again; nothing when that was all. May throw as well.
    [[nodiscard]] virtual std::optional<std::chrono::milliseconds>
    tidy(std::chrono::milliseconds /*most*/)
    {
        return std::nullopt;
    }

    /// Keeps the drafts from a sudden end of the program until they are saved: the next load()
    /// gives them, above what another program put in their place. Quick, and no stored note
    /// changes. May throw as well.
    ///
    /// The identifier is that of the note which the text of the capture screen would become. Where
    /// it is among the stored notes by then, that text is out of date.
    virtual void keepTyped(const NoteSnapshot & /*snapshot*/, const QUuid & /*captureId*/) {}

    /// Makes what was kept outlast a power cut. May throw as well.
    virtual void syncTyped() {}

    /// Where what was typed is kept; absent when nothing is.
    [[nodiscard]] virtual std::optional<std::filesystem::path> typedPath() const
    {
        return std::nullopt;
    }

    /// Whether the last load() gave text that was kept and is not stored.
    [[nodiscard]] virtual bool hasRestored() const { return false; }

    /// Why the last load() left alone what was kept; absent when it did not.
    [[nodiscard]] virtual std::optional<Message> leftAlone() const { return std::nullopt; }

    /// With which identifier the text of the capture screen was kept that the last load() gave;
    /// absent when it gave none.
    [[nodiscard]] virtual std::optional<QUuid> captureId() const { return std::nullopt; }
};
