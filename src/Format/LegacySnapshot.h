// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QByteArray>
#include <filesystem>

/// Reads the older single-file form, one JSON object:
///
///     {"version": 1, "captureDraft": "…", "editingDrafts": {"<id>": "…"},
///      "notes": [{"id": "…", "body": "…", "createdAt": 700000000.5, "updatedAt": …}]}
///
/// Times are seconds since 2001-01-01 00:00:00 UTC. Every key is required, in any order. Unknown
/// keys are ignored, but no object may have a name twice. Keys of drafts are given their canonical
/// text.
///
/// The reading needs memory for the snapshot, for the names in the objects that are open, and for
/// one text at a time. Throws a JsonError; for a version other than 1 in the same form a
/// RepositoryError; either is about the file.
[[nodiscard]] NoteSnapshot decodeLegacySnapshot(const QByteArray &bytes,
                                                const std::filesystem::path &file = {});
