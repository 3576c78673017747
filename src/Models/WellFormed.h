// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The text with U+FFFD in place of each half of a surrogate pair that stands alone, which no file
/// can hold. Such a text comes from programs that cut others in the middle of a character.
[[nodiscard]] QString wellFormed(const QString &text);
