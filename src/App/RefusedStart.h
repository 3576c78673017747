// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"
#include "ProgramAlert.h"

#include <chrono>

/// Tells why the program ends before it has begun.
///
/// The alert goes by itself after a while: a start that is not to be must come to its end, also
/// where nobody sits before the screen.
class RefusedStart final : public ProgramAlert {
    Q_OBJECT

public:
    static constexpr std::chrono::seconds longestTime{6};

    /// In the language of the preferences; in English without any.
    RefusedStart(const Message &reason, const AppPreferences *preferences);

    /// One line on the standard error and, unless somebody reads that, an alert.
    static void tell(const Message &reason, const AppPreferences *preferences);

    /// Whether what is written there comes before somebody's eyes: a terminal, or a pipe, which
    /// another program holds. A file or the system's journal is for later.
    [[nodiscard]] static bool isRead(int descriptor) noexcept;
};
