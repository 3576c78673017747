// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"

#include <exception>

/// The base of everything that the storage throws. NoteStore is the only place that catches.
class StorageError : public std::exception {
public:
    /// What happened and what to do, for the user.
    [[nodiscard]] virtual Message message() const = 0;

    [[nodiscard]] QString description() const { return message().english(); }
    [[nodiscard]] const char *what() const noexcept override { return "Quillmark storage error"; }
};
