// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QLocale>
#include <QString>
#include <variant>

/// A text of the program within a sentence, translated as the sentence is.
struct Phrase {
    QString key;

    friend bool operator==(const Phrase &, const Phrase &) = default;
};

/// What fills a place in a format text: a whole number for "%d" and "%02d", a text for "%@".
using FormatArgument = std::variant<qint64, QString, Phrase>;

/// Fills the places of a format text in order. "%%" is a per cent sign; a place without an
/// argument of its kind stays as it is written. Numbers are written as in the locale; a phrase that
/// nobody has translated is its key.
[[nodiscard]] QString formatted(const QString &format, const QList<FormatArgument> &arguments,
                                const QLocale &locale = QLocale::c());

/// A sentence for the user that can still be translated: the English text, which is the key of
/// the translation table, and the values to be filled in.
struct Message {
    QString key;
    QList<FormatArgument> arguments;

    [[nodiscard]] QString english() const { return formatted(key, arguments); }

    friend bool operator==(const Message &, const Message &) = default;
};
