// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QWidget>
#include <algorithm>

/// What view tests do with the widgets of a view: find them by name, read and press them.
namespace Views {

/// The one with that object name that can be seen; none when there is none.
template <class Widget = QWidget>
Widget *find(const QWidget &view, const char *name)
{
    const auto found = view.findChildren<Widget *>(QString::fromLatin1(name));
    for (Widget *const widget : found) {
        if (widget->isVisibleTo(&view))
            return widget;
    }
    return nullptr;
}

/// The text of a label or a button.
inline QString text(const QWidget &view, const char *name)
{
    if (const auto *label = find<QLabel>(view, name))
        return label->text();
    const auto *button = find<QAbstractButton>(view, name);
    return button ? button->text() : QString();
}

inline bool isChinese(const QString &text)
{
    return std::ranges::any_of(text, [](QChar c) { return c.script() == QChar::Script_Han; });
}

inline void click(const QWidget &view, const char *name)
{
    auto *widget = find(view, name);
    QVERIFY2(widget, name);
    QTest::mouseClick(widget, Qt::LeftButton);
}

/// The view on screen, with the keyboard.
inline bool show(QWidget &view)
{
    view.show();
    view.activateWindow();
    return QTest::qWaitForWindowActive(&view);
}

} // namespace Views
