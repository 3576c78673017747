// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QByteArray>
#include <QList>

/// A note as one JSON object: "id", "created", "updated", "title" and "body", times as in a note
/// file.
[[nodiscard]] QByteArray jsonOf(const Note &note);

/// A list of them, in their order, one on a line.
[[nodiscard]] QByteArray jsonOf(const QList<Note> &notes);
