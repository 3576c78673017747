// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemDelegate>

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
};
