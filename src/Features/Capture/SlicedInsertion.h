// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTextCursor>
#include <QTimer>

/// Puts a text of many lines into a document, some at a time, so that the window answers meanwhile:
/// a document takes microseconds for each line. It is one step to undo.
///
/// The document must outlive it, and nobody else may change it before it has finished.
class SlicedInsertion final : public QObject {
    Q_OBJECT

public:
    /// As many lines are quickly inserted at once.
    static constexpr qsizetype mostLinesAtOnce = 2000;

    SlicedInsertion(QTextDocument &document, int position, QString text, QObject *parent);

    /// Inserts the rest now, which may take seconds.
    void finish();

Q_SIGNALS:
    void finished();

private:
    void insertSlice();

    QTextCursor m_cursor;
    const QString m_text;
    qsizetype m_inserted = 0;
    QTimer m_timer;
};
