// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>
#include <QUuid>
#include <optional>
#include <string_view>

/// The canonical text of an identifier: 8-4-4-4-12 hexadecimal digits, upper case, no braces.
[[nodiscard]] QString canonicalText(const QUuid &id);

/// Reads the 8-4-4-4-12 form, in either case, and nothing else: no braces, no missing hyphens.
[[nodiscard]] std::optional<QUuid> parseId(QStringView text) noexcept;
[[nodiscard]] std::optional<QUuid> parseId(std::string_view bytes) noexcept;

/// Whether an identifier that can be read is spelled as canonicalText() spells it.
[[nodiscard]] bool isCanonicalId(QStringView text) noexcept;
