// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

/// Finds one text in many, without regard to case, accents or width, as a reader would.
///
/// Both sides are compared in folded form: compatibility decomposition, combining marks dropped,
/// full case folding. Built once for a query and then asked of each text; nothing about the texts
/// is remembered.
class TextSearch {
public:
    explicit TextSearch(QStringView query);

    [[nodiscard]] bool isFoundIn(QStringView text) const;

private:
    QString m_folded;
};
