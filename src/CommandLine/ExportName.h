// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <string>

/// The names of readable copies: each note's title, as far as it can be the name of a file.
///
/// - "/", "\" and control characters become "-", and spaces at the ends go.
/// - A name that would begin with "." begins with "_.", so that it is not hidden.
/// - More than 180 bytes are cut at the end of a character and end with "…".
/// - A note without a title is "Untitled".
/// - Of equal titles, also when only the case differs, the second one gets " (2)", and so on.
/// - ".md" comes last.
class ExportNames {
public:
    static constexpr int mostBytes = 180;

    /// The next name for that title; each call gives another one.
    [[nodiscard]] std::string next(const QString &title);

private:
    QHash<QString, int> m_counts;
};
