// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"
#include "StorageError.h"

#include <cstdint>

/// Why the storage took nothing, for who asked from outside: what happened, and what kind of thing
/// that is, as far as a script may want to tell one from another.
struct Refusal {
    enum class Kind : std::uint8_t {
        limits,       ///< More than a note, a file or the folder may hold, or no Unicode.
        diskFull,     ///< No room, or none for this user.
        recoveryCopy, ///< A recovery copy needs attention.
        folder,       ///< What lies in the folder is not as it must be, or changed meanwhile.
        inUse,        ///< Another program has the folder.
        disk,         ///< Any other word of the system's.
    };

    Kind kind = Kind::disk;
    Message message;

    [[nodiscard]] static Refusal of(const StorageError &error);

    friend bool operator==(const Refusal &, const Refusal &) = default;
};
