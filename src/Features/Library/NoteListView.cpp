// SPDX-License-Identifier: MIT
#include "NoteListView.h"

#include "Keys.h"
#include "Metrics.h"
#include "NoteListAccessible.h"
#include "NoteListModel.h"
#include "NoteRow.h"

#include <QCoreApplication>
#include <QHoverEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

namespace {

constexpr Qt::KeyboardModifiers commandModifiers =
    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool isText(const QKeyEvent &event)
{
    return !event.text().isEmpty() && event.text().front().isPrint() &&
           !(event.modifiers() & commandModifiers);
}

} // namespace

NoteListView::NoteListView(NoteListModel *model, QWidget *parent)
    : QListView(parent)
    , m_model(model)
{
    NoteListAccessible::install();
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_Hover);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    verticalScrollBar()->setSingleStep(Metrics::scrollStep);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setItemDelegate(new NoteRow(this));

    // Around setModel(), which connects the view and its selection: the place is kept before they
    // forget it, and returned to after.
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, &NoteListView::keepPlace);
    setModel(model);
    connect(model, &QAbstractItemModel::modelReset, this, &NoteListView::returnToPlace);
    connect(model, &QAbstractItemModel::modelReset, this, &NoteListView::announceRows);
    connect(model, &QAbstractItemModel::dataChanged, this, &NoteListView::announceRows);
    connect(this, &QAbstractItemView::clicked, this, &NoteListView::opened);
}

QModelIndex NoteListView::indexAt(const QPoint &point) const
{
    const QModelIndex index = QListView::indexAt(point);
    return NoteRow::surface(visualRect(index)).contains(point) ? index : QModelIndex();
}

void NoteListView::changeEvent(QEvent *event)
{
    // Another language may be set in another font, with lines of another height.
    if (event->type() == QEvent::LocaleChange)
        scheduleDelayedItemsLayout();
    QListView::changeEvent(event);
}

void NoteListView::focusInEvent(QFocusEvent *event)
{
    if (!currentIndex().isValid()) {
        const QModelIndex top = QListView::indexAt({0, 0});
        setCurrentIndex(top.isValid() ? top : m_model->index(0));
    }
    QListView::focusInEvent(event);
    takeCompositions();
}

void NoteListView::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = !Keys::modifiers(*event);
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (isPlain && currentIndex().isValid() && !event->isAutoRepeat()) {
            Q_EMIT opened(currentIndex());
            return;
        }
        event->ignore();
        return;
    case Qt::Key_Delete:
        if (isPlain && currentIndex().isValid() && !event->isAutoRepeat())
            Q_EMIT deletionRequested(currentIndex());
        return;
    case Qt::Key_Up:
        if (isPlain && currentIndex().row() <= 0) {
            Q_EMIT leftUpwards();
            return;
        }
        break;
    default:
        if (isText(*event)) {
            Q_EMIT typed(event->text());
            return;
        }
    }
    // The keyboard is at work here: the row that it is on shows its ring.
    window()->setAttribute(Qt::WA_KeyboardFocusChange);
    QListView::keyPressEvent(event);
}

void NoteListView::takeCompositions()
{
    // The toolkit thinks that only items that can be edited have use for them.
    setAttribute(Qt::WA_InputMethodEnabled, m_searchField);
}

void NoteListView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QListView::currentChanged(current, previous);
    takeCompositions();
}

void NoteListView::inputMethodEvent(QInputMethodEvent *event)
{
    if (!m_searchField || m_isLeaving)
        return;
    // The keyboard follows the words and not the letters: an input method ends its composition
    // when the keyboard goes elsewhere. Then the toolkit has it commit once more what it remembers.
    if (!event->commitString().isEmpty()) {
        m_isLeaving = true;
        m_searchField->setFocus(Qt::OtherFocusReason);
        m_isLeaving = false;
    }
    QCoreApplication::sendEvent(m_searchField, event);
}

QVariant NoteListView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (!m_searchField)
        return QWidget::inputMethodQuery(query);
    const QVariant answer = m_searchField->inputMethodQuery(query);
    if (query != Qt::ImCursorRectangle && query != Qt::ImAnchorRectangle)
        return answer;
    const QRect there = answer.toRect();
    return QRect(mapFromGlobal(m_searchField->mapToGlobal(there.topLeft())), there.size());
}

void NoteListView::scrollContentsBy(int dx, int dy)
{
    QListView::scrollContentsBy(dx, dy);
    if (!viewport()->underMouse())
        return;
    // Another row has come under the pointer, which did not move.
    const QPointF pointer = QCursor::pos();
    const QPointF here = viewport()->mapFromGlobal(pointer);
    QHoverEvent hover(QEvent::HoverMove, here, pointer, here);
    viewportEvent(&hover);
}

void NoteListView::announceRows()
{
    if (!QAccessible::isActive())
        return;
    if (auto *rows =
            dynamic_cast<NoteListAccessible *>(QAccessible::queryAccessibleInterface(this)))
        rows->forgetRows();
}

void NoteListView::keepPlace()
{
    const QModelIndex current = currentIndex();
    const QModelIndex top = QListView::indexAt({0, 0});
    m_place = {};
    m_place.scrollPosition = verticalScrollBar()->value();
    if (current.isValid()) {
        m_place.current = m_model->note(current).id;
        m_place.currentRow = current.row();
    }
    if (top.isValid()) {
        m_place.top = m_model->note(top).id;
        m_place.topOffset = visualRect(top).top();
    }
}

/// The row of the note that was the current one, or the row that took its place.
QModelIndex NoteListView::rowOfCurrent() const
{
    const QModelIndex same = m_model->indexOf(m_place.current);
    return same.isValid() ? same
                          : m_model->index(std::min(m_place.currentRow, m_model->rowCount() - 1));
}

void NoteListView::returnToPlace()
{
    if (!m_place.current.isNull())
        setCurrentIndex(rowOfCurrent());
    if (m_place.scrollPosition == 0) {
        scrollToTop();
        return;
    }
    executeDelayedItemsLayout();
    const QModelIndex top = m_model->indexOf(m_place.top);
    verticalScrollBar()->setValue(top.isValid()
                                      ? verticalOffset() + visualRect(top).top() - m_place.topOffset
                                      : m_place.scrollPosition);
}
