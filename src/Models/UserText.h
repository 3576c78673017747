// SPDX-License-Identifier: MIT
#pragma once

#include "TextChange.h"

#include <QString>
#include <QStringView>

/// The number of user-perceived characters (extended grapheme clusters, Unicode Annex 29).
[[nodiscard]] qsizetype characterCount(QStringView text);

/// By how much the number of characters has grown with the change that has made the text. Costs by
/// the change, and by the text around it up to where characters are certain to end: that of its
/// line at most.
[[nodiscard]] qsizetype characterCountChange(QStringView text, const TextChange &change);

/// The text when it has no more code points than that, or else as many of them as make whole
/// characters. Costs by the length of what it gives.
[[nodiscard]] QString beginning(const QString &text, qsizetype mostCodePoints);

/// True when the text holds nothing but Unicode white space and line breaks.
[[nodiscard]] bool isBlank(QStringView text) noexcept;
