// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

class AlertButton;
class AppPreferences;
class TextLabel;

/// Asks whether a note is to be deleted, over the whole of a window, which waits meanwhile.
///
/// A view in the window and not a dialog of its own, so that no window manager can put it behind
/// the floating panel or beside it. It takes the keyboard until it is answered: Tab stays inside,
/// Escape cancels, Return presses the button that has the focus, at first "Cancel". It gives the
/// keyboard back to the view that had it.
class DeleteAlert final : public QWidget {
    Q_OBJECT

public:
    /// Shows itself; deletes itself when answered.
    DeleteAlert(const AppPreferences &preferences, QWidget *window);

    /// Also when nobody has answered: what it covers is enabled again.
    ~DeleteAlert() override;

Q_SIGNALS:
    /// Answered, either way; the alert is on its way out.
    void dismissed();

    /// "Delete" was the answer. Before dismissed(), while the alert still has the keyboard.
    void confirmed();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void dismiss();
    void setWindowEnabled(bool isEnabled);
    void placeCard();
    void render();

    const AppPreferences &m_preferences;
    const QPointer<QWidget> m_hadFocus;
    QWidget *const m_card;
    TextLabel *const m_title;
    TextLabel *const m_message;
    AlertButton *const m_cancel;
    AlertButton *const m_delete;
};
