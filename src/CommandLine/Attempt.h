// SPDX-License-Identifier: MIT
#pragma once

#include "ExitStatus.h"
#include "Message.h"
#include "Refusal.h"

#include <filesystem>
#include <functional>
#include <optional>

/// Why a command came to nothing: what to say, where to look, and what to tell the shell.
struct Complaint {
    ExitStatus status = ExitStatus::disk;
    Message message;

    /// The file or folder that a person should look at.
    std::optional<std::filesystem::path> place;

    /// Whether the sentence names it.
    bool isPlaceNamed = true;
};

[[nodiscard]] Complaint complaintOf(const Refusal &refusal);

/// Does what may throw, and answers why it failed; nothing when it did not. What NoteStore is to
/// the window this is here: the only place that catches.
[[nodiscard]] std::optional<Complaint> attempt(const std::function<void()> &action);
