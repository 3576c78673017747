// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"
#include "Message.h"
#include "NoteFolder.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

/// Looks through a data folder and says what a person should know of it. Opens everything to read,
/// and nothing that is no ordinary file. Throws a FileError.
class FolderCheck {
public:
    struct Finding {
        enum class Kind : std::uint8_t {
            refused,      ///< The notes cannot be loaded.
            recoveryCopy, ///< One of two states that a person has to choose from.
            stage,        ///< What an interrupted save left; harmless.
            difference,   ///< Of the finding before, file by file.
            editorLock,
            conflictCopy,
            backup,
            syncMarker, ///< The folder is shared that is exchanged by saves.
            other,      ///< A file of another program.
        };
        Kind kind;
        std::filesystem::path path;
        Message message;
    };

    /// Whether a finding is something that a person has to do something about.
    [[nodiscard]] static bool isWrong(Finding::Kind kind) noexcept;

    explicit FolderCheck(const Directory &data) noexcept
        : m_data(data)
    {
    }

    /// The names of recovery copies and stages, those of a save under way among them, in order.
    [[nodiscard]] std::vector<std::string> hiddenNames() const;

    /// What they are, and how they differ from the notes.
    [[nodiscard]] std::vector<Finding> hidden(const std::vector<std::string> &names) const;

    /// Each file that keeps the notes from being loaded, and why.
    [[nodiscard]] std::vector<Finding> refused() const;

    /// What lies among the notes and is none of them.
    [[nodiscard]] std::vector<Finding> neighbours() const;

private:
    void describe(const std::string &name, std::vector<Finding> &findings) const;
    void describeFile(const std::string &name, Finding::Kind kind,
                      std::vector<Finding> &findings) const;
    void compareFolders(const Directory &copy, const Directory &live,
                        std::vector<Finding> &findings) const;
    void findNeighbours(const Directory &folder, Section section,
                        std::vector<Finding> &findings) const;

    const Directory &m_data;
};
