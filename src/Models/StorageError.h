// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <utility>

/// Why the storage refused or failed, in one list for all of it.
enum class Reason : std::uint8_t {
    // The notes folder as a whole.
    unsupportedVersion,
    invalidMarkdown,
    externalChange,
    recoveryRequired,

    // One file or folder.
    system,         ///< The system said no: an errno goes with it.
    notUtf8,        ///< The file's bytes are not UTF-8.
    notRegularFile, ///< A folder, link, pipe, socket or device stands where a file must be.
    editorLock,     ///< A link by which an editor marks the file beside it as being edited.
    notFolder,      ///< A link or a file stands where a folder must be.
    lowerLayer,     ///< The file system cannot move the folder, since it is made of several layers.
    mountPoint,     ///< Another file system is mounted inside the notes.
    tooLarge,       ///< More bytes than a file may have.
    tooManyNotes,   ///< More notes than the folder may have.
    tooMuchText,    ///< More bytes than all files of the folder may have together.
    busy,           ///< Another program changes the folder again and again.
    inUse,          ///< Another program has the data folder for itself.
    outOfReach,     ///< Not the folder that this process has the right to use since its start.
    tooDeep,        ///< More folders in one another than are followed.
    secondDraft,    ///< Another file is the same draft, under a name of another case.
    notUnicode,     ///< The text to be written holds half a surrogate pair.

    // One value of the older notes file.
    jsonSyntax,     ///< No JSON from some place on, or half a surrogate pair there.
    jsonMissing,    ///< A key that must be there is not.
    jsonTwice,      ///< A name, or a draft of one note, that another one was before.
    jsonWrongValue, ///< A value of another kind, or out of its range.
    jsonTooDeep,    ///< More values in one another than are followed.
    jsonOtherShape, ///< A key is missing or has a wrong value, in a file of another version.
};

/// The base of everything that the storage throws. NoteStore is the only place that catches.
class StorageError : public std::exception {
public:
    [[nodiscard]] Reason reason() const noexcept { return m_reason; }

    /// The errno; 0 when the reason is not the system's.
    [[nodiscard]] virtual int systemError() const noexcept { return 0; }

    /// What happened and what to do, for the user.
    [[nodiscard]] virtual Message message() const = 0;

    /// The file or folder that a person should look at; null when there is none.
    [[nodiscard]] virtual const std::filesystem::path *place() const noexcept
    {
        return m_place.get();
    }

    [[nodiscard]] QString description() const { return message().english(); }
    [[nodiscard]] const char *what() const noexcept override { return "Quillmark storage error"; }

protected:
    explicit StorageError(Reason reason) noexcept
        : m_reason(reason)
    {
    }

    /// Errors are equal whatever they are about.
    void setPlace(std::filesystem::path place)
    {
        m_place = std::make_shared<const std::filesystem::path>(std::move(place));
    }

    /// The key of the reason's one sentence; empty for the system's, which has one for each errno.
    [[nodiscard]] QString sentence() const;

private:
    Reason m_reason;

    /// Shared, since errors are copied without allocating.
    std::shared_ptr<const std::filesystem::path> m_place;
};
