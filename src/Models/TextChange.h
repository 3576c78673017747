// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// One place of a text that has become another, in units of UTF-16. Neither text begins or ends in
/// the middle of a surrogate pair.
struct TextChange {
    qsizetype position = 0;
    QString removed;
    QString added;

    [[nodiscard]] bool isEmpty() const noexcept { return removed.isEmpty() && added.isEmpty(); }

    /// Makes the change in the text, which must have at that place what is removed.
    void applyTo(QString &text) const { text.replace(position, removed.size(), added); }

    [[nodiscard]] bool fits(QStringView text) const noexcept
    {
        // To Qt a null text begins with a null one only.
        return position <= text.size() &&
               (removed.isEmpty() || text.sliced(position).startsWith(removed));
    }

    friend bool operator==(const TextChange &, const TextChange &) = default;
};
