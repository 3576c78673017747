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
#include <QPainter>
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
    : QAbstractItemView(parent)
    , m_model(model)
    , m_row(new NoteRow(this))
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
    setItemDelegate(m_row);

    setModel(model);
    connect(model, &NoteListModel::rowsAboutToChange, this, &NoteListView::keepPlace);
    connect(model, &NoteListModel::rowsChanged, this, &NoteListView::returnToPlace);
    connect(model, &NoteListModel::rowsChanged, this, &NoteListView::announceRows);
    connect(model, &NoteListModel::textsChanged, this, &NoteListView::doItemsLayout);
    connect(model, &NoteListModel::textsChanged, this, &NoteListView::announceRows);
    connect(this, &QAbstractItemView::clicked, this, &NoteListView::opened);
}

const std::vector<int> &NoteListView::tops() const
{
    const auto rows = static_cast<size_t>(m_model->rowCount());
    if (m_tops.size() == rows + 1)
        return m_tops;
    const int withExcerpt = m_row->height(locale(), true);
    const int titleOnly = m_row->height(locale(), false);
    m_tops.resize(rows + 1);
    int top = 0;
    for (size_t row = 0; row < rows; ++row) {
        m_tops[row] = top;
        top += m_model->hasExcerpt(static_cast<int>(row)) ? withExcerpt : titleOnly;
    }
    m_tops[rows] = top;
    return m_tops;
}

int NoteListView::rowAt(int height) const
{
    const auto below = std::upper_bound(tops().begin(), tops().end() - 1, height);
    return std::max(0, static_cast<int>(below - tops().begin()) - 1);
}

QRect NoteListView::visualRect(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    const auto row = static_cast<size_t>(index.row());
    return {0, tops()[row] - verticalOffset(), viewport()->width(), tops()[row + 1] - tops()[row]};
}

QModelIndex NoteListView::indexAt(const QPoint &point) const
{
    const QModelIndex index = m_model->index(rowAt(point.y() + verticalOffset()));
    return NoteRow::surface(visualRect(index)).contains(point) ? index : QModelIndex();
}

void NoteListView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    const QRect row = visualRect(index);
    const int toTop = row.top();
    const int toBottom = row.bottom() + 1 - viewport()->height();
    int way = 0;
    switch (hint) {
    case PositionAtTop:
        way = toTop;
        break;
    case PositionAtBottom:
        way = toBottom;
        break;
    case PositionAtCenter:
        way = (toTop + toBottom) / 2;
        break;
    case EnsureVisible:
        way = std::min(toTop, std::max(toBottom, 0));
        break;
    }
    verticalScrollBar()->setValue(verticalOffset() + way);
}

int NoteListView::verticalOffset() const
{
    return verticalScrollBar()->value();
}

void NoteListView::doItemsLayout()
{
    m_tops.clear();
    QAbstractItemView::doItemsLayout();
}

void NoteListView::updateGeometries()
{
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, tops().back() - viewport()->height()));
    QAbstractItemView::updateGeometries();
}

QModelIndex NoteListView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int last = m_model->rowCount() - 1;
    const int row = currentIndex().row();
    if (row < 0)
        return m_model->index(0);
    switch (action) {
    case MoveUp:
    case MovePrevious:
        return m_model->index(std::max(row - 1, 0));
    case MoveDown:
    case MoveNext:
        return m_model->index(std::min(row + 1, last));
    case MovePageUp:
    case MovePageDown:
        return m_model->index(rowOnePageFrom(row, action));
    case MoveHome:
        return m_model->index(0);
    case MoveEnd:
        return m_model->index(last);
    case MoveLeft:
    case MoveRight:
        break;
    }
    return currentIndex();
}

/// The furthest row that is wholly on a page together with this one; at least the next one.
int NoteListView::rowOnePageFrom(int row, CursorAction action) const
{
    const int page = viewport()->height();
    const auto place = static_cast<size_t>(row);
    const int last = m_model->rowCount() - 1;
    if (action == MovePageDown) {
        const int end = tops()[place] + page;
        return end >= tops().back() ? last : std::min(std::max(rowAt(end) - 1, row + 1), last);
    }
    const int begin = tops()[place + 1] - page;
    return begin <= 0 ? 0 : std::max(std::min(rowAt(begin - 1) + 1, row - 1), 0);
}

void NoteListView::paintEvent(QPaintEvent *event)
{
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QStyle::State state = option.state & ~QStyle::State_HasFocus;
    const QModelIndex current = hasFocus() ? currentIndex() : QModelIndex();
    QPainter painter(viewport());
    const int end = event->rect().bottom() + 1 + verticalOffset();
    for (int row = rowAt(event->rect().top() + verticalOffset());
         row < m_model->rowCount() && tops()[static_cast<size_t>(row)] < end; ++row) {
        const QModelIndex index = m_model->index(row);
        option.rect = visualRect(index);
        option.state = state;
        option.state.setFlag(QStyle::State_HasFocus, index == current);
        option.state.setFlag(QStyle::State_MouseOver, index == m_hovered);
        m_row->paint(&painter, option, index);
    }
}

bool NoteListView::viewportEvent(QEvent *event)
{
    // The toolkit draws the two rows anew that this is about, and keeps to itself which they are.
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        m_hovered = indexAt(static_cast<QHoverEvent *>(event)->position().toPoint());
        break;
    case QEvent::HoverLeave:
    case QEvent::Leave:
        m_hovered = QModelIndex();
        break;
    default:
        break;
    }
    return QAbstractItemView::viewportEvent(event);
}

void NoteListView::changeEvent(QEvent *event)
{
    // Another language may be set in another font, with lines of another height.
    if (event->type() == QEvent::LocaleChange)
        doItemsLayout();
    QAbstractItemView::changeEvent(event);
}

void NoteListView::focusInEvent(QFocusEvent *event)
{
    if (!currentIndex().isValid()) {
        setCurrentIndex(m_model->index(rowAt(verticalOffset())));
    }
    QAbstractItemView::focusInEvent(event);
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
    QAbstractItemView::keyPressEvent(event);
}

void NoteListView::takeCompositions()
{
    // The toolkit thinks that only items that can be edited have use for them.
    setAttribute(Qt::WA_InputMethodEnabled, m_searchField);
}

void NoteListView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    if (QAccessible::isActive() && current.isValid() && hasFocus()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(current.row());
        QAccessible::updateAccessibility(&event);
    }
    QAbstractItemView::currentChanged(current, previous);
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
    scrollDirtyRegion(dx, dy);
    viewport()->scroll(dx, dy);
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
    const QModelIndex top = m_model->index(rowAt(verticalOffset()));
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
    // Rows that go take the keyboard along with them from row to row, which readers would tell of.
    selectionModel()->clearCurrentIndex();
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
    doItemsLayout();
    if (!m_place.current.isNull())
        setCurrentIndex(rowOfCurrent());
    if (m_place.scrollPosition == 0) {
        scrollToTop();
        return;
    }
    const QModelIndex top = m_model->indexOf(m_place.top);
    verticalScrollBar()->setValue(top.isValid()
                                      ? verticalOffset() + visualRect(top).top() - m_place.topOffset
                                      : m_place.scrollPosition);
}
