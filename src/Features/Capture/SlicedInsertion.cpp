// SPDX-License-Identifier: MIT
#include "SlicedInsertion.h"

#include <QElapsedTimer>

namespace {

/// In milliseconds.
constexpr qint64 slice = 16;

/// Small enough to look at the clock between them. A line is never cut: the start of a paragraph
/// would be laid out many times.
constexpr int linesInPiece = 64;

qsizetype endOfPiece(const QString &text, qsizetype begin)
{
    qsizetype end = begin;
    for (int line = 0; line < linesInPiece && end < text.size(); ++line) {
        const qsizetype found = text.indexOf(u'\n', end);
        end = found < 0 ? text.size() : found + 1;
    }
    return end;
}

} // namespace

SlicedInsertion::SlicedInsertion(QTextDocument &document, int position, QString text,
                                 QObject *parent)
    : QObject(parent)
    , m_cursor(&document)
    , m_text(std::move(text))
{
    m_cursor.setPosition(position);
    connect(&m_timer, &QTimer::timeout, this, &SlicedInsertion::insertSlice);
    m_timer.start(0);
}

DocumentGap SlicedInsertion::gap() const
{
    return {m_cursor.position(), QStringView(m_text).sliced(m_inserted)};
}

void SlicedInsertion::finish()
{
    while (m_timer.isActive())
        insertSlice();
}

void SlicedInsertion::insertSlice()
{
    QElapsedTimer time;
    time.start();
    m_isInserting = true;
    m_cursor.joinPreviousEditBlock();
    while (m_inserted < m_text.size() && time.elapsed() < slice) {
        const qsizetype end = endOfPiece(m_text, m_inserted);
        m_cursor.insertText(m_text.sliced(m_inserted, end - m_inserted));
        m_inserted = end;
    }
    m_cursor.endEditBlock();
    m_isInserting = false;
    if (m_inserted == m_text.size()) {
        m_timer.stop();
        Q_EMIT finished();
    }
}
