// SPDX-License-Identifier: MIT
#pragma once

#include <QListView>
#include <QUuid>

class NoteListModel;

/// The list of notes that scrolls, without bars. Each row is a button: a click or Return opens it.
///
/// With the keyboard: arrows, Home, End and the page keys move; Up on the first row leaves the list
/// upwards; Delete asks to delete the row's note; what is typed is for the search, and so is what
/// an input method composes. When other notes are shown, the row that had the keyboard keeps it and
/// the rows stay where they were, as far as they are still there.
class NoteListView final : public QListView {
    Q_OBJECT

public:
    explicit NoteListView(NoteListModel *model, QWidget *parent = nullptr);

    /// What is composed while the list has the keyboard shows in this field, which gets the
    /// keyboard with the first word.
    void setSearchField(QWidget *field) noexcept { m_searchField = field; }

    /// Nothing in the gaps between the rows.
    [[nodiscard]] QModelIndex indexAt(const QPoint &point) const override;

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
    void scrollContentsBy(int dx, int dy) override;

private:
    /// What is on screen, by notes and not by rows.
    struct Place {
        QUuid current;
        int currentRow = 0;
        QUuid top;
        int topOffset = 0;
        int scrollPosition = 0;
    };

    void takeCompositions();
    void announceRows();
    void keepPlace();
    [[nodiscard]] QModelIndex rowOfCurrent() const;
    void returnToPlace();

    NoteListModel *const m_model;
    QWidget *m_searchField = nullptr;
    bool m_isLeaving = false;
    Place m_place;
};
