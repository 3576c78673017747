// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>

/// Replaces a whole folder as one step, so that a crash, a failed write or a power cut leaves
/// either all of the old content or all of the new.
namespace MarkdownTransaction {

/// Throws RepositoryError::recoveryRequired when a recovery copy lies in the folder; passes when
/// the folder does not exist.
void checkRecovery(const std::filesystem::path &folder);

/// Builds the new content in a hidden stage beside the target and exchanges the two.
///
/// The stage starts with everything that the target holds, as hard links. prepare gets it and must
/// make it the complete new content: it may remove files and put new ones in their place, but must
/// not write into one that it found, since that is the target's own. validateOriginal must throw
/// when the target may no longer be overwritten. validateDisplaced looks once more, at the old
/// content right after the exchange, and throws when another program changed it in between.
///
/// Each is called at most once. Throws what they throw, RepositoryError::externalChange when
/// entries of the old content changed before the exchange, or another StorageError of its own; the
/// target is then what it was. On return the new content is on the disk.
void replace(
    const std::filesystem::path &target,
    const std::function<void(const std::filesystem::path &stage)> &prepare,
    const std::function<void()> &validateOriginal,
    const std::function<void(const std::filesystem::path &displaced)> &validateDisplaced = nullptr);

} // namespace MarkdownTransaction
