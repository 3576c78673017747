// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

/// The number of user-perceived characters (extended grapheme clusters, Unicode Annex 29).
[[nodiscard]] qsizetype characterCount(QStringView text);

/// The text when it has no more code points than that, or else as many of them as make whole
/// characters. Costs by the length of what it gives.
[[nodiscard]] QString beginning(const QString &text, qsizetype mostCodePoints);

/// True when the text holds nothing but Unicode white space and line breaks.
[[nodiscard]] bool isBlank(QStringView text) noexcept;
