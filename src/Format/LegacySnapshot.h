// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QByteArray>

/// Reads the older single-file form, one JSON object:
///
///     {"version": 1, "captureDraft": "…", "editingDrafts": {"<id>": "…"},
///      "notes": [{"id": "…", "body": "…", "createdAt": 700000000.5, "updatedAt": …}]}
///
/// Times are seconds since 2001-01-01 00:00:00 UTC. Every key is required and comes once, unknown
/// keys are ignored. Keys of drafts are given their canonical text. Throws a JsonError, and a
/// RepositoryError for a version other than 1.
[[nodiscard]] NoteSnapshot decodeLegacySnapshot(const QByteArray &bytes);
