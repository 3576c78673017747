// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

#include <cstdint>
#include <string_view>

/// What a file beside the notes looks like, by its name alone.
enum class Neighbour : std::uint8_t {
    none,         ///< One of the notes' own, or nothing that tells of itself.
    editorLock,   ///< An editor has a file open, or had it when it ended badly.
    conflictCopy, ///< A program that synchronises folders found two versions of a file.
    backup,       ///< An editor or a person kept an older version.
};

/// Known are the locks of Emacs, LibreOffice and Vim, the conflict copies of Syncthing, Nextcloud
/// and ownCloud, Dropbox and rclone, and the usual names of backups. For a name that is no UTF-8,
/// too.
[[nodiscard]] Neighbour neighbourOf(std::string_view name, FileKind kind);
