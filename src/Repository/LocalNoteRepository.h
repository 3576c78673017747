// SPDX-License-Identifier: MIT
#pragma once

#include "NoteFolder.h"
#include "NoteRepository.h"
#include "TypedText.h"

#include <filesystem>
#include <optional>

class SavePlan;

/// The notes as a folder of Markdown files; docs/FORMAT.md describes it whole.
///
/// Lives on one thread. Refuses to overwrite what another program changed since the last load or
/// save, and goes on refusing until load() is called again.
class LocalNoteRepository final : public NoteRepository {
public:
    /// The folder that holds the file is the data folder. Touches no file.
    explicit LocalNoteRepository(const std::filesystem::path &fileURL = defaultFileURL());

    /// "Penwick/notes.json" in the user's data folder (XDG_DATA_HOME, when it is absolute).
    [[nodiscard]] static std::filesystem::path defaultFileURL();

    [[nodiscard]] std::optional<QUrl> notesFolderURL() const override;

    /// Reads the Markdown folder, or migrates the older JSON file, or finds nothing.
    [[nodiscard]] NoteSnapshot load() override;
    void save(const NoteSnapshot &snapshot) override;
    void keepTyped(const NoteSnapshot &snapshot) override;

private:
    void loadNotes();
    [[nodiscard]] std::optional<NoteSnapshot> readLegacySnapshot() const;
    void write(const NoteSnapshot &snapshot);
    void refuseExternalChange(SavePlan &plan) const;

    /// Of the live folder as it is now, absent while there is none. The plan sees every file.
    [[nodiscard]] std::optional<Sha256::Digest> fingerprint(SavePlan &plan) const;
    [[nodiscard]] std::filesystem::path collectionURL() const;

    const std::filesystem::path m_fileURL;
    bool m_isLoaded = false;

    /// As it was last loaded or saved; its texts are shared with m_state.
    NoteSnapshot m_saved;
    TypedText m_typed;

    /// False as long as only memory may know of the folder that was loaded.
    bool m_isOnDisk = false;

    /// Absent while there is no Markdown folder.
    std::optional<FolderState> m_state;
};
