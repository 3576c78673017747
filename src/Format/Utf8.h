// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Turns UTF-8 into text without losing anything silently: a byte order mark stays as U+FEFF, and
/// one invalid sequence refuses the whole. Keeps its buffer from text to text.
class Utf8Decoder {
public:
    /// Valid until the next call; nothing for bytes that are not UTF-8.
    [[nodiscard]] std::optional<QStringView> decode(std::string_view bytes);

private:
    std::vector<QChar> m_buffer;
};

/// Writes the text as UTF-8 into bytes, over what they held. False when the text holds half a
/// surrogate pair, which UTF-8 cannot carry.
[[nodiscard]] bool encodeUtf8(QStringView text, std::string &bytes);
