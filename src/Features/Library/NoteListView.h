// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <QUuid>
#include <vector>

class NoteListModel;
class NoteRow;

/// The list of notes that scrolls, without bars. Each row is a button: a click or Return opens it.
///
/// With the keyboard: arrows, Home, End and the page keys move; Up on the first row leaves the list
/// upwards; Delete asks to delete the row's note; what is typed is for the search, and so is what
/// an input method composes. When other notes are shown, the row that had the keyboard keeps it and
/// the rows stay where they were, as far as they are still there.
///
/// A row has one of two heights, so that the places of a hundred thousand rows are a sum. The
/// toolkit's own list asks each row for its size through a delegate, at every change of any row.
class NoteListView final : public QAbstractItemView {
    Q_OBJECT

public:
    explicit NoteListView(NoteListModel *model, QWidget *parent = nullptr);

    /// What is composed while the list has the keyboard shows in this field, which gets the
    /// keyboard with the first word.
    void setSearchField(QWidget *field) noexcept { m_searchField = field; }

    [[nodiscard]] QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    /// Nothing in the gaps between the rows.
    [[nodiscard]] QModelIndex indexAt(const QPoint &point) const override;
    void doItemsLayout() override;

    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    void opened(const QModelIndex &row);
    void deletionRequested(const QModelIndex &row);
    void leftUpwards();
    void typed(const QString &text);

protected:
    void changeEvent(QEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void updateGeometries() override;
    bool viewportEvent(QEvent *event) override;

    [[nodiscard]] QModelIndex moveCursor(CursorAction action,
                                         Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] int horizontalOffset() const override { return 0; }
    [[nodiscard]] int verticalOffset() const override;
    [[nodiscard]] bool isIndexHidden(const QModelIndex &) const override { return false; }
    /// Rows are opened and not selected.
    void setSelection(const QRect &, QItemSelectionModel::SelectionFlags) override {}
    [[nodiscard]] QRegion visualRegionForSelection(const QItemSelection &) const override
    {
        return {};
    }

private:
    /// What is on screen, by notes and not by rows.
    struct Place {
        QUuid current;
        int currentRow = 0;
        QUuid top;
        int topOffset = 0;
        int scrollPosition = 0;
    };

    /// Where the rows begin, from the top of the first one, and where the last one ends.
    [[nodiscard]] const std::vector<int> &tops() const;
    /// The last row that begins at that height or above it; the first one above all.
    [[nodiscard]] int rowAt(int height) const;
    [[nodiscard]] int rowOnePageFrom(int row, CursorAction action) const;

    void takeCompositions();
    void announceRows();
    void keepPlace();
    [[nodiscard]] QModelIndex rowOfCurrent() const;
    void returnToPlace();

    NoteListModel *const m_model;
    NoteRow *const m_row;
    mutable std::vector<int> m_tops; ///< None while they are not known.
    QPersistentModelIndex m_hovered;
    QWidget *m_searchField = nullptr;
    bool m_isLeaving = false;
    Place m_place;
};
