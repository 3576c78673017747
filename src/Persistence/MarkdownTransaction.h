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
/// The stage starts with everything that the target holds. prepare gets it and must make it the
/// complete new content; validateOriginal must throw when the target may no longer be
/// overwritten. Each is called at most once. Throws what they throw, or a StorageError of its own;
/// the target is then what it was. On return the new content is on the disk.
void replace(const std::filesystem::path &target,
             const std::function<void(const std::filesystem::path &stage)> &prepare,
             const std::function<void()> &validateOriginal);

} // namespace MarkdownTransaction
