// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"
#include "Note.h"

#include <filesystem>
#include <optional>

/// Adds one note to the stored ones as a file of its own, without reading the others: what that
/// costs does not grow with them.
///
/// As safe as a save: on return the file is on the disk; after any error, kill or power cut it is
/// there in whole or not at all, and nothing is left that would keep the notes from being loaded.
/// The data folder must be claimed, by this program alone or together with others that add. An
/// identifier that is there already is refused.
///
/// Where the file is; nothing, and nothing is done, when there is no Markdown folder yet. Throws
/// RepositoryError::recoveryRequired, RepositoryError::invalidMarkdown for a folder of another
/// format, RepositoryError::externalChange when another program moves the folder meanwhile, or a
/// FileError, also for a note that would be more than the folder may hold. Whether all texts
/// together are more than that is looked at up to a few hundred notes: beyond them it would cost
/// more than all the rest.
[[nodiscard]] std::optional<std::filesystem::path> addNote(const Directory &data, const Note &note);
