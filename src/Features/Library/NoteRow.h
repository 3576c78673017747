// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemDelegate>
#include <QLocale>

/// How one note looks in the list: its title, the start of what follows, its date. Each is one
/// line, cut where the row ends, so that a row is one of two heights.
class NoteRow final : public QAbstractItemDelegate {
    Q_OBJECT

public:
    using QAbstractItemDelegate::QAbstractItemDelegate;

    /// What is drawn and pressed of an item; below it is the gap to the next one.
    [[nodiscard]] static QRect surface(const QRect &item);

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

    /// Of an item in that locale, with the gap.
    [[nodiscard]] int height(const QLocale &locale, bool hasExcerpt) const;

private:
    mutable QLocale m_locale;
    mutable int m_withExcerpt = 0;
    mutable int m_titleOnly = 0;
};
