// SPDX-License-Identifier: MIT
#pragma once

#include "Attempt.h"
#include "Message.h"

#include <QString>
#include <QTranslator>
#include <filesystem>
#include <string_view>

/// The terminal or pipe that the program talks to, in the language of the locale.
///
/// What a script reads is the same in every language and never coloured; what a person reads on a
/// terminal is translated, coloured and cut to its width.
class Console {
public:
    Console();

    /// "en" or "zh-Hans".
    [[nodiscard]] const QString &language() const;
    [[nodiscard]] QString text(const QString &key) const;
    [[nodiscard]] QString text(const Message &message) const;

    /// Whether a person reads the output.
    [[nodiscard]] bool isTerminal() const noexcept { return m_isTerminal; }

    /// In characters of a terminal.
    [[nodiscard]] int width() const noexcept;

    /// To the standard output. What fails here is told by finish().
    void write(QStringView text);
    void write(std::string_view bytes);

    /// A path, as it is on the disk, on a line of its own.
    void writePath(const std::filesystem::path &path);

    enum class Look { plain, strong, quiet };

    /// Puts it in the colours of that look, on a terminal.
    void write(QStringView text, Look look);

    /// One sentence to the standard error, after the program's name.
    void complain(const Complaint &complaint) const;
    void tell(const QString &sentence) const;

    /// Hands over what was written so far.
    void flush();

    /// The same, at the end. A complaint where the output could not take it.
    [[nodiscard]] std::optional<Complaint> finish();

private:
    mutable QString m_language;
    mutable QTranslator m_translations;
    mutable bool m_isLoaded = false;
    const bool m_isTerminal;
    int m_error = 0;
};

/// The text without what would steer a terminal: control characters become spaces, or, where lines
/// are to stay, all of them but line feeds and tabs.
[[nodiscard]] QString harmless(const QString &text, bool keepsLines);

/// A path for a line of text.
[[nodiscard]] QString shown(const std::filesystem::path &path);

/// As much of the text from its beginning as has room in so many cells of a terminal, with "…"
/// where something is left out.
[[nodiscard]] QString cutToWidth(const QString &text, int cells);
