// SPDX-License-Identifier: MIT
#pragma once

#include "DroppedText.h"
#include "LauncherInteraction.h"

#include <QPointF>
#include <QWidget>

class AppPreferences;
class QMenu;
class ThemedMenu;
class Screens;

/// The transparent view over the whole launcher that takes every press, drag, right click
/// and drop. To
/// assistive tools it is the button "New note" and the launcher's only element.
class LauncherHitView final : public QWidget {
    Q_OBJECT

public:
    /// Without preferences the texts are English.
    LauncherHitView(const Screens &screens, const AppPreferences *preferences,
                    QWidget *parent = nullptr);

    /// The context menu, made anew each time it is asked for, so that it is in the current
    /// language; deletes itself once it has closed.
    [[nodiscard]] ThemedMenu *makeMenu();

    /// Ends a press that is still going on; a drag stays where it is.
    void endPress();

    /// Opens the context menu in the middle of the launcher, for who has no pointer to place it.
    void showMenu();

Q_SIGNALS:
    void openRequested();
    void moved(LauncherInteraction::Translation translation, bool ended);
    void quitRequested();
    void dropped(const DroppedText &dropped);

protected:
    bool eventFilter(QObject *receiver, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void openMenu(QPoint place);
    static void closeWithoutPointer(QMenu &menu);
    [[nodiscard]] int besideLauncher(int height) const;
    [[nodiscard]] Point position(const QMouseEvent &event) const;
    [[nodiscard]] QString text(const QString &key) const;
    void render();

    const Screens &m_screens;
    const AppPreferences *const m_preferences;
    LauncherInteraction m_interaction;
    bool m_isPressed = false;
    QPointF m_pressOnScreen;
    QPointF m_pressInWindow;
    QMetaObject::Connection m_menuLater;
};
