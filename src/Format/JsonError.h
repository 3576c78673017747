// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

#include <cstdint>

/// The older notes file is not what it must be: not JSON, a missing key, or a wrong value.
class JsonError final : public StorageError {
public:
    enum class Problem : std::uint8_t {
        notText,        ///< A text is expected.
        endlessText,    ///< A text has no end, or a line end in it.
        halfCharacter,  ///< Half a surrogate pair.
        unknownEscape,  ///< A backslash and what JSON does not know.
        notNumber,      ///< A number is expected.
        numberTooLarge, ///< Beyond a double.
        notInteger,     ///< Beyond 64 bits, or with a fraction.
        notIdentifier,  ///< Not 8-4-4-4-12 hexadecimal digits.
        notTime,        ///< Outside the years 0 to 9999.
        notValue,       ///< Neither text, number, object, array nor one of the three words.
        lacks,          ///< The second place names a sign or a key.
        comesTwice,     ///< A key that another one was before.
        tooDeep,        ///< More in one another than is followed.
        followedByMore, ///< Something stands after the end.
        notUtf8,        ///< The bytes are no text at all.
    };

    /// Where in the file, for example "notes[3].id", and empty for the file as a whole; and what is
    /// lacking there.
    JsonError(Problem problem, QString place, QString lacking = {});

    [[nodiscard]] Problem problem() const noexcept { return m_problem; }
    [[nodiscard]] const QString &place() const noexcept { return m_place; }
    [[nodiscard]] Message message() const override;

private:
    Problem m_problem;
    QString m_place;
    QString m_lacking;
};
