// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QString>
#include <QStringView>
#include <optional>

/// The format of one note file, and its only definition. Every line ends with a single LF:
///
///     ---
///     quillmark: 1
///     id: 8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F
///     created: 2025-03-01T08:15:30.250Z
///     updated: 2025-03-01T08:15:30.250Z
///     ---
///     the body, verbatim, with nothing added at its end
///
/// The header's keys may come in any order, unknown keys are ignored, none may come twice.
/// The first line that is exactly "---" ends the header; the body may hold more of them.
///
/// A text is read as user-perceived characters. CR LF is one of them and not a line end here, and
/// a colon with a combining mark on it is no colon.
namespace NoteMarkdownCodec {

/// Times need a text form (Timestamp::hasTextForm()).
[[nodiscard]] QString encode(const Note &note);

/// Throws RepositoryError::invalidMarkdown for everything that deviates from the format.
[[nodiscard]] Note decode(QStringView text);

/// Like decode(), but answers nothing where that throws.
[[nodiscard]] std::optional<Note> parse(QStringView text);

/// Reads only the very form that encode() writes: encode() of what it answers is this text again.
/// Nothing for all else, be it valid or not. Several times faster than decode().
[[nodiscard]] std::optional<Note> decodeExact(QStringView text);

} // namespace NoteMarkdownCodec
