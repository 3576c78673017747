// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

/// The number of user-perceived characters (extended grapheme clusters, Unicode Annex 29).
[[nodiscard]] qsizetype characterCount(QStringView text);

/// True when the text holds nothing but Unicode white space and line breaks.
[[nodiscard]] bool isBlank(QStringView text) noexcept;
