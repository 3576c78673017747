// SPDX-License-Identifier: MIT
#pragma once

#include "JsonError.h"

#include <QString>
#include <QStringView>
#include <functional>
#include <vector>

/// Reads one JSON text from its front to its end, value by value, in the way that its user asks.
///
/// Exact where QJsonDocument is not: integers keep 64 bits, a name that comes twice is seen by the
/// user, and half a surrogate pair is refused. Throws a JsonError that says where it is.
class JsonReader {
public:
    using Problem = JsonError::Problem;

    /// The text must outlive this.
    explicit JsonReader(QStringView text);

    /// Calls for each member, which must then read or skip its value.
    void readObject(const std::function<void(const QString &name)> &readMember);

    /// Calls for each element, which must then read or skip it.
    void readArray(const std::function<void()> &readElement);

    [[nodiscard]] QString readString();
    [[nodiscard]] double readNumber();

    /// Also reads 1.0 and 1e2, as far as a double is exact.
    [[nodiscard]] qint64 readInteger();

    void skipValue();

    /// Nothing but white space may follow.
    void finish();

    /// Throws a JsonError: where the reading is, the problem there, and what is lacking.
    [[noreturn]] void fail(Problem problem, const QString &lacking = {}) const;

private:
    void enter();
    [[nodiscard]] QStringView readNumberText();
    void skipDigits();
    void skipWhiteSpace();
    void expectWord(QStringView word);
    [[nodiscard]] char16_t readEscape();
    [[nodiscard]] char16_t readHexadecimal();

    /// The next character that is no white space; NUL at the end.
    [[nodiscard]] char16_t peek();
    [[nodiscard]] bool takes(char16_t c);
    void expect(char16_t c);

    QStringView m_text;
    qsizetype m_place = 0;
    int m_depth = 0;

    /// A member's name, or an element's index where that is not negative.
    struct Step {
        QString name;
        qsizetype index = -1;

        [[nodiscard]] QString text() const;
    };

    /// The way to the value that is being read: "notes", [3], "id".
    std::vector<Step> m_way;
};
