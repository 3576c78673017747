// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What a file beside the notes looks like, by its name alone.
enum class Neighbour : std::uint8_t {
    none,         ///< One of the notes' own, or nothing that tells of itself.
    editorLock,   ///< An editor has a file open, or had it when it ended badly.
    conflictCopy, ///< A program that synchronises folders found two versions of a file.
    backup,       ///< An editor or a person kept an older version.
    syncMarker,   ///< A program that synchronises folders has this very folder for its own.
};

/// Known are the locks of Emacs, LibreOffice and Vim, the names of conflictNameOf(), the usual
/// names of backups, and what Syncthing (".stfolder"), Git (".git") and its like, Nextcloud and
/// ownCloud (".sync_*.db", ".nextcloudsync.log"), Dropbox (".dropbox"), Resilio (".sync"), Unison
/// and rclone ("RCLONE_TEST") put into the folder that they share. For a name that is no UTF-8,
/// too.
[[nodiscard]] Neighbour neighbourOf(std::string_view name, FileKind kind);

/// What a program that synchronises folders made of the name of a file that was changed on two
/// computers.
struct ConflictName {
    enum class Engine : std::uint8_t { syncthing, nextcloud, dropbox, rclone };

    Engine engine;

    /// What the file was called. Of a copy of a copy the first name.
    std::string original;

    [[nodiscard]] static const char *nameOf(Engine engine) noexcept;
};

/// The forms are those that the programs' own pages give:
///
/// Syncthing: NAME.sync-conflict-YYYYMMDD-HHMMSS-DEVICE.EXT
///     (docs.syncthing.net/users/syncing.html, "Conflicting Changes")
/// Nextcloud: NAME (conflicted copy YYYY-MM-DD HHMMSS).EXT; ownCloud and older ones:
///     NAME_conflict-YYYYMMDD-HHMMSS.EXT (docs.nextcloud.com, desktop/conflicts.html)
/// Dropbox: NAME (USER's conflicted copy YYYY-MM-DD).EXT, perhaps with a number
///     (help.dropbox.com/syncing-uploads/conflicted-copy)
/// rclone bisync: NAME.EXT..path1 and ..path2 up to 1.65; later NAME.EXT.conflict1 and 2 or
///     .path1 and .path2, or, with --suffix-keep-extension, NAME.conflict1.EXT
///     (rclone.org/bisync, "--conflict-loser"). Both files are renamed, and none keeps its name.
[[nodiscard]] std::optional<ConflictName> conflictNameOf(std::string_view name);

/// Whether a file is by its name a conflict copy of a note or a draft.
[[nodiscard]] bool isCopyOfNote(std::string_view name);
