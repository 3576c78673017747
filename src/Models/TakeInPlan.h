// SPDX-License-Identifier: MIT
#pragma once

#include "Message.h"

#include <cstdint>
#include <filesystem>
#include <vector>

/// What would become of the files beside the notes that hold texts of the user's and are no notes
/// themselves, told before it is done. All of them are put away into a folder of their own.
struct TakeInPlan {
    /// One file or folder.
    struct Step {
        enum class Outcome : std::uint8_t {
            note,     ///< A note is made of it, or several are.
            restored, ///< It is the note again that it is a copy of, and that is gone.
            putAway,  ///< The notes hold all that it holds.
        };
        Outcome outcome = Outcome::putAway;
        std::filesystem::path file;

        /// The first line of its text; empty when there is none.
        QString title;
        Message what;
        Message becomes;

        friend bool operator==(const Step &, const Step &) = default;
    };

    /// By ascending path.
    std::vector<Step> steps;

    /// The folder in which all of them get a folder of their own.
    std::filesystem::path originals;

    /// How many notes are made in all.
    qint64 noteCount = 0;

    [[nodiscard]] bool isEmpty() const noexcept { return steps.empty(); }

    friend bool operator==(const TakeInPlan &, const TakeInPlan &) = default;
};
