// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// How much there is to lay out in a text, and how much of it the editor takes: what is beyond
/// could not be laid out without standing still.
struct TextExtent {
    static constexpr qsizetype mostCharacters = 16'777'216;
    static constexpr qsizetype mostLineEnds = 1'000'000;

    /// Of a paragraph all is laid out anew with each key.
    static constexpr qsizetype mostInParagraph = 1'200'000;

    qsizetype characters = 0; ///< In units of UTF-16.
    qsizetype lineEnds = 0;   ///< Also those within a paragraph.
    qsizetype longestParagraph = 0;

    /// There is a word of thousands of characters, such as an encoded picture. To look for a place
    /// to break it QTextLayout takes time that grows with the square of its length, seconds for
    /// 100,000 characters. Chinese and its like may be broken after every character and are no such
    /// words.
    bool hasEndlessWord = false;

    [[nodiscard]] static TextExtent of(QStringView text) noexcept;

    [[nodiscard]] bool hasRoom() const noexcept;
};

/// The beginning of a text that has no room, as much as has, with its paragraphs cut into parts:
/// for reading.
[[nodiscard]] QString readableBeginning(const QString &text);
