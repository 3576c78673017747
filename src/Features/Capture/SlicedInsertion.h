// SPDX-License-Identifier: MIT
#pragma once

#include "DocumentText.h"

#include <QObject>
#include <QTextCursor>
#include <QTimer>

/// Puts a text of many lines into a document, some at a time, so that the window answers meanwhile:
/// a document takes microseconds for each line. It is one step to undo, together with the step
/// before it and with what others do to the document meanwhile.
///
/// The document must outlive it.
class SlicedInsertion final : public QObject {
    Q_OBJECT

public:
    /// As many lines are quickly inserted at once.
    static constexpr qsizetype mostLinesAtOnce = 2000;

    /// The text has LF at the end of each paragraph.
    SlicedInsertion(QTextDocument &document, int position, QString text, QObject *parent);

    /// What the document lacks still.
    [[nodiscard]] DocumentGap gap() const;

    /// It is its own change that the document tells at the moment.
    [[nodiscard]] bool isInserting() const noexcept { return m_isInserting; }

    /// Inserts the rest now, which may take seconds.
    void finish();

Q_SIGNALS:
    void finished();

private:
    void insertSlice();

    QTextCursor m_cursor;
    const QString m_text;
    qsizetype m_inserted = 0;
    bool m_isInserting = false;
    QTimer m_timer;
};
