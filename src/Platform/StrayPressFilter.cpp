// SPDX-License-Identifier: MIT
#include "StrayPressFilter.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWidget>
#include <QWindow>
#include <utility>

namespace {

/// What gets a press in a window, as the program's own widgets see it.
QWidget *widgetAt(const QWindow &window, QPointF place)
{
    QWidget *const whole = QWidget::find(window.winId());
    if (!whole)
        return nullptr;
    QWidget *const child = whole->childAt(place.toPoint());
    return child ? child : whole;
}

} // namespace

StrayPressFilter::StrayPressFilter(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool StrayPressFilter::eventFilter(QObject *receiver, QEvent *event)
{
    // Who has typed since has seen what is there now.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::InputMethod)
        m_hasPress = false;
    // Events come to the window before they come to a widget in it.
    if (!receiver->isWindowType())
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto &press = *static_cast<QMouseEvent *>(event);
        QWidget *const pressed = widgetAt(*static_cast<QWindow *>(receiver), press.position());
        m_isStray = isStray(press, pressed);
        if (!m_isStray) {
            m_hasPress = press.button() == Qt::LeftButton;
            m_time = press.timestamp();
            m_place = press.globalPosition();
            m_pressed = pressed;
        }
        return m_isStray;
    }
    case QEvent::MouseMove:
        m_isStray = m_isStray && static_cast<QMouseEvent *>(event)->buttons() != Qt::NoButton;
        return m_isStray;
    case QEvent::MouseButtonDblClick:
        return m_isStray;
    case QEvent::MouseButtonRelease:
        return std::exchange(m_isStray, false);
    default:
        return false;
    }
}

bool StrayPressFilter::isStray(const QMouseEvent &press, const QWidget *pressed) const
{
    const QStyleHints &hints = *QGuiApplication::styleHints();
    const QPointF way = press.globalPosition() - m_place;
    return m_hasPress && press.button() == Qt::LeftButton && pressed != m_pressed &&
           press.timestamp() - m_time < quint64(hints.mouseDoubleClickInterval()) &&
           qAbs(way.x()) <= hints.mouseDoubleClickDistance() &&
           qAbs(way.y()) <= hints.mouseDoubleClickDistance();
}
