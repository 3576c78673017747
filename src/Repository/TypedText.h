// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "Result.h"

#include <QMap>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

class Directory;
class Disk;

/// What was typed since the last save, kept beside the notes so that a sudden end of the program
/// does not take it along.
///
/// Each draft has a file of its own, which says from which text the draft went on. Where another
/// one stands there by the time it is read, it was saved meanwhile, and the file is out of date.
/// Nothing is synced: after a power cut a file may be torn, is recognised as such, and ignored.
class TypedText {
public:
    /// Touches no file.
    TypedText(Disk &disk, std::filesystem::path dataFolder);

    /// Writes the drafts that differ from the saved ones. Throws a FileError.
    void keep(const NoteSnapshot &typed, const NoteSnapshot &saved, const QUuid &captureId);

    /// To be called when a save is about to be done. What was kept of a text that is saved already,
    /// since it was taken back, becomes that text: after the save nothing else would tell that it
    /// is out of date. What goes wrong here goes unnoticed.
    void keepWhatWasTakenBack(const NoteSnapshot &next, const NoteSnapshot &saved);

    /// Puts what is kept into the notes as they were loaded. Throws a FileError when a file cannot
    /// be read.
    void restore(NoteSnapshot &snapshot);

    /// With which identifier the text of the capture screen was kept; absent when none is kept.
    [[nodiscard]] std::optional<QUuid> captureId() const noexcept { return m_captureId; }

    /// Removes what was kept or restored, since it is saved.
    void forget() noexcept;

private:
    void keepDraft(const Directory &folder, const QString &key, const QString &typed,
                   const QString &saved, const QUuid &captureId);
    Result<void> write(const Directory &folder, const std::string &name, const std::string &bytes);

    Disk &m_disk;
    const std::filesystem::path m_dataFolder;

    /// The names of the files that there may be.
    std::set<std::string> m_names;

    /// What they hold, by the key of the draft.
    QMap<QString, QString> m_kept;
    std::optional<QUuid> m_captureId;
};
