// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>
#include <QHash>

class NoteListView;

/// The list of notes for assistive tools: items that can be pressed, which opens their notes.
///
/// Qt's own interface offers cells to select, which here would do nothing. Rows are made when a
/// tool asks for them.
class NoteListAccessible final : public QAccessibleWidget {
public:
    /// From now on every NoteListView has such an interface.
    static void install();

    explicit NoteListAccessible(NoteListView *list);
    ~NoteListAccessible() override;

    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface *focusChild() const override;

    /// Other notes are shown, or the same ones read differently: tools ask for the rows anew.
    void forgetRows();

private:
    [[nodiscard]] NoteListView *list() const;

    mutable QHash<int, QAccessible::Id> m_rows;
};
