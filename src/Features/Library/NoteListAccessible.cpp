// SPDX-License-Identifier: MIT
#include "NoteListAccessible.h"

#include "NoteListModel.h"
#include "NoteListView.h"
#include "NoteRow.h"

#include <QPointer>

namespace {

/// One row, as long as the list shows the same notes.
class NoteRowAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    NoteRowAccessible(NoteListView *list, int row)
        : m_list(list)
        , m_row(row)
    {
    }

    [[nodiscard]] int row() const noexcept { return m_row; }

    [[nodiscard]] bool isValid() const override { return m_list && index().isValid(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override
    {
        return isValid() ? m_list->window()->windowHandle() : nullptr;
    }

    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_list);
    }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }

    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        if (!isValid())
            return {};
        if (kind == QAccessible::Name)
            return index().data(Qt::AccessibleTextRole).toString();
        return kind == QAccessible::Description
                   ? index().data(Qt::AccessibleDescriptionRole).toString()
                   : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}

    [[nodiscard]] QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect surface = NoteRow::surface(m_list->visualRect(index()));
        return surface.translated(m_list->viewport()->mapToGlobal(QPoint()));
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.focusable = true;
        state.focused = m_list->hasFocus() && m_list->currentIndex() == index();
        state.offscreen = !m_list->viewport()->rect().intersects(m_list->visualRect(index()));
        state.invisible = !m_list->isVisible();
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        return {pressAction(), setFocusAction()};
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }
    void doAction(const QString &action) override
    {
        if (!isValid())
            return;
        if (action == pressAction()) {
            Q_EMIT m_list->opened(index());
        } else if (action == setFocusAction()) {
            m_list->setCurrentIndex(index());
            m_list->setFocus(Qt::OtherFocusReason);
        }
    }

private:
    [[nodiscard]] QModelIndex index() const { return m_list->model()->index(m_row, 0); }

    const QPointer<NoteListView> m_list;
    const int m_row;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *list = qobject_cast<NoteListView *>(object);
    return list ? new NoteListAccessible(list) : nullptr;
}

} // namespace

void NoteListAccessible::install()
{
    QAccessible::installFactory(makeInterface);
}

NoteListAccessible::NoteListAccessible(NoteListView *list)
    : QAccessibleWidget(list, QAccessible::List)
{
}

NoteListAccessible::~NoteListAccessible()
{
    for (const QAccessible::Id id : std::as_const(m_rows))
        QAccessible::deleteAccessibleInterface(id);
}

QAccessible::State NoteListAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    // One of the two has the keyboard for a reader.
    state.focused = state.focused && !list()->currentIndex().isValid();
    return state;
}

NoteListView *NoteListAccessible::list() const
{
    return static_cast<NoteListView *>(widget());
}

int NoteListAccessible::childCount() const
{
    return list()->model()->rowCount();
}

QAccessibleInterface *NoteListAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    const auto known = m_rows.constFind(index);
    if (known != m_rows.constEnd())
        return QAccessible::accessibleInterface(*known);
    auto *row = new NoteRowAccessible(list(), index);
    m_rows.insert(index, QAccessible::registerAccessibleInterface(row));
    return row;
}

int NoteListAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *row = dynamic_cast<const NoteRowAccessible *>(child);
    return row ? row->row() : -1;
}

QAccessibleInterface *NoteListAccessible::childAt(int x, int y) const
{
    return child(list()->indexAt(list()->viewport()->mapFromGlobal(QPoint(x, y))).row());
}

QAccessibleInterface *NoteListAccessible::focusChild() const
{
    return list()->hasFocus() ? child(list()->currentIndex().row()) : nullptr;
}

void NoteListAccessible::forgetRows()
{
    for (const QAccessible::Id id : std::as_const(m_rows))
        QAccessible::deleteAccessibleInterface(id);
    m_rows.clear();
    QAccessibleEvent event(list(), QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}
