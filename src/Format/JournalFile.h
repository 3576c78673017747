// SPDX-License-Identifier: MIT
#pragma once

#include "Sha256.h"

#include <QString>
#include <QUuid>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Tells one text of the stored notes from others, and from none.
class TextMark {
public:
    /// Of no text: its note is not there.
    TextMark() = default;

    explicit TextMark(const QString &text);

    /// Of the text where there is one.
    explicit TextMark(const std::optional<QString> &text);

    [[nodiscard]] bool isOfText() const noexcept { return m_digest.has_value(); }

    /// "none", or the digest of the UTF-8 form in hexadecimal digits.
    [[nodiscard]] std::string toText() const;
    [[nodiscard]] static std::optional<TextMark> fromText(std::string_view text);

    friend bool operator==(const TextMark &, const TextMark &) = default;

private:
    std::optional<Sha256Digest> m_digest;
};

/// A draft as it was on the screen.
struct TypedDraft {
    /// "capture", or the canonical text of the note's identifier.
    QString key;
    QString text;

    /// The stored text from which the typing went on.
    TextMark base;

    /// What a save that was begun makes of it, where that is not the text itself.
    std::optional<TextMark> successor;

    friend bool operator==(const TypedDraft &, const TypedDraft &) = default;
};

/// A file that keeps what was typed and not saved yet; docs/FORMAT.md shows one.
struct JournalFile {
    /// Grows with every file that is written in the place of the one before.
    std::uint64_t number = 0;

    /// Of the note that the text of the capture screen will become.
    QUuid captureId;
    std::vector<TypedDraft> drafts;

    [[nodiscard]] std::string encoded() const;

    /// Every draft that is whole: each has a digest of its own, so that what a power cut tore is
    /// left out. Nothing for what is no such file.
    [[nodiscard]] static std::optional<JournalFile> decoded(std::string_view bytes);

    /// The draft of an older version's file, which had one for each draft. Nothing when it is torn
    /// or no such file.
    [[nodiscard]] static std::optional<TypedDraft> decodedOlder(const QString &key,
                                                                std::string_view bytes);
};
