// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// A part of a text, in units of UTF-16.
struct TextRange {
    qsizetype start = 0;
    qsizetype length = 0;

    [[nodiscard]] qsizetype end() const noexcept { return start + length; }

    friend bool operator==(const TextRange &, const TextRange &) = default;
};
