// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

#include <filesystem>

/// A failure that the platform reported for one file or folder.
class FileError final : public StorageError {
public:
    /// What went wrong where errno does not say it.
    enum class Reason {
        system,         ///< systemError() says it.
        notUtf8,        ///< The file's bytes are not UTF-8.
        notRegularFile, ///< A folder, link, pipe, socket or device stands where a file must be.
        notFolder,      ///< A link or a file stands where a folder must be.
        mountPoint,     ///< Another file system is mounted inside the notes.
        tooLarge,       ///< More bytes than a file may have.
        tooManyNotes,   ///< More notes than the folder may have.
        tooMuchText,    ///< More bytes than all files of the folder may have together.
        tooDeep,        ///< More folders in one another than are followed.
        secondDraft,    ///< Another file is the same draft, under a name of another case.
        notUnicode,     ///< The text to be written holds half a surrogate pair.
    };

    FileError(std::filesystem::path path, int systemError);
    FileError(std::filesystem::path path, Reason reason);

    [[nodiscard]] const std::filesystem::path &path() const noexcept { return m_path; }

    /// The errno; 0 when the reason is not the system's.
    [[nodiscard]] int systemError() const noexcept { return m_systemError; }
    [[nodiscard]] Reason reason() const noexcept { return m_reason; }

    [[nodiscard]] Message message() const override;

private:
    std::filesystem::path m_path;
    int m_systemError = 0;
    Reason m_reason = Reason::system;
};
