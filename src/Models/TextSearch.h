// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

/// Finds one text in many, without regard to case, accents or width, as a reader would.
///
/// Both sides are compared in folded form: compatibility decomposition (NFKD), marks dropped, full
/// case folding. So "strasse" finds "Straße", "cafe" finds "CAFÉ", "ﬁ" and "fi" find each other,
/// and so do full-width and half-width forms. The query is one text: inner spaces must match.
///
/// Built once for a query and then asked of each text. Nothing about the texts is remembered: the
/// scan skips, many units at a time, what cannot begin a match, and folds only where one may begin.
class TextSearch {
public:
    explicit TextSearch(QStringView query);

    /// True as well for every text when the folded query is empty.
    [[nodiscard]] bool isFoundIn(QStringView text) const;

private:
    QString m_folded;
};
