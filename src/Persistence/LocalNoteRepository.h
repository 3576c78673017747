// SPDX-License-Identifier: MIT
#pragma once

#include "NoteRepository.h"

#include <QByteArray>
#include <filesystem>
#include <optional>

/// The notes as a folder of Markdown files; docs/FORMAT.md describes it whole.
///
/// Refuses to overwrite what another program changed since the last load or save.
class LocalNoteRepository final : public NoteRepository
{
public:
    /// The folder that holds the file is the data folder. Touches no file.
    explicit LocalNoteRepository(std::filesystem::path fileURL = defaultFileURL());

    /// "Penwick/notes.json" in the user's data folder (XDG_DATA_HOME).
    [[nodiscard]] static std::filesystem::path defaultFileURL();

    [[nodiscard]] std::optional<QUrl> notesFolderURL() const override;

    /// Reads the Markdown folder, or migrates the older JSON file, or finds nothing.
    [[nodiscard]] NoteSnapshot load() override;
    void save(const NoteSnapshot &snapshot) override;
};
