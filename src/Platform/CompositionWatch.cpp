// SPDX-License-Identifier: MIT
#include "CompositionWatch.h"

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QWidget>

CompositionWatch::CompositionWatch(const QWidget &window)
    : m_window(window)
{
    connect(qGuiApp, &QGuiApplication::focusObjectChanged, this, &CompositionWatch::follow);
}

bool CompositionWatch::eventFilter(QObject *receiver, QEvent *event)
{
    if (receiver == m_receiver && event->type() == QEvent::InputMethod)
        m_isComposing = !static_cast<QInputMethodEvent *>(event)->preeditString().isEmpty();
    return QObject::eventFilter(receiver, event);
}

void CompositionWatch::follow(QObject *focusObject)
{
    if (m_receiver)
        m_receiver->removeEventFilter(this);
    m_isComposing = false;

    const auto *const widget = qobject_cast<QWidget *>(focusObject);
    m_receiver = widget && m_window.isAncestorOf(widget) ? focusObject : nullptr;
    if (m_receiver)
        m_receiver->installEventFilter(this);
}
