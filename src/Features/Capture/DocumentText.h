// SPDX-License-Identifier: MIT
#pragma once

#include "TextChange.h"

#include <QString>

class QTextDocument;

/// A place of a document at which a part of the text is still to come into it.
struct DocumentGap {
    int position = 0;
    QStringView text; ///< With LF at the end of each paragraph.
};

/// The text of a document character by character, which follows it change by change: what a key
/// costs does not depend on how long the text is.
///
/// The document has paragraphs, the text line ends. They stay as they were when all are alike, and
/// become LF with the first change when they are not.
class DocumentText {
public:
    [[nodiscard]] const QString &text() const noexcept { return m_text; }

    /// What the document holds from now on.
    void set(const QString &text);

    /// Takes over what QTextDocument::contentsChange() told, and gives what it was in the text:
    /// nothing when it was formats alone. The gap is where it is after the change, and its text
    /// stays, whatever was removed around it.
    TextChange follow(const QTextDocument &document, int from, int removed, int added,
                      const DocumentGap &gap = {});

    /// The same for a text that is about to be inserted at that place of a document without a gap.
    TextChange insert(const QTextDocument &document, int at, const QString &text);

    /// The text with LF at the end of each paragraph, as a document of such paragraphs is made.
    [[nodiscard]] static QString paragraphs(const QString &text);
    [[nodiscard]] static QString paragraphsAt(const QTextDocument &document, int from, int length);

private:
    [[nodiscard]] qsizetype placeOf(const QTextDocument &document, int position,
                                    const DocumentGap &gap = {}) const;

    QString m_text;
    QString m_lineEnd = QStringLiteral("\n");
    bool m_isMixed = false;
};
