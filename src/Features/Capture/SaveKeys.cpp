// SPDX-License-Identifier: MIT
#include "SaveKeys.h"

#include "Keys.h"

#include <QKeyEvent>
#include <QWidget>

namespace {

bool isSaveKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = Keys::modifiers(event);
    return Keys::isReturn(event) &&
           (modifiers == Qt::ControlModifier || modifiers == Qt::MetaModifier);
}

} // namespace

SaveKeys::SaveKeys(QWidget *view)
    : QObject(view)
    , m_view(view)
{
    view->installEventFilter(this);
}

bool SaveKeys::eventFilter(QObject *watched, QEvent *event)
{
    // Keys that nobody inside has use for come to the window, which is known once it is shown.
    if (watched == m_view && event->type() == QEvent::Show)
        m_view->window()->installEventFilter(this);
    if (watched != m_view->window() || event->type() != QEvent::KeyPress || !m_view->isVisible())
        return false;
    const auto &key = *static_cast<QKeyEvent *>(event);
    if (!isSaveKey(key))
        return false;
    event->accept();
    if (m_isEnabled && !key.isAutoRepeat())
        Q_EMIT pressed();
    return true;
}
