// SPDX-License-Identifier: MIT
#pragma once

#include <QTextLayout>

/// Where emoji stand in a text, each whole with its skin tone, joiners and flag letters, in a font
/// with colours. A font for letters that has black signs for some of their characters would draw
/// those and split what belongs together. For QTextLayout::setFormats().
[[nodiscard]] QList<QTextLayout::FormatRange> emojiFormats(const QString &text, const QFont &font);
