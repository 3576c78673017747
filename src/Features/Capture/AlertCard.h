// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

class AlertButton;
class AppPreferences;
class ScrolledText;
class TextLabel;
struct TextStyle;

/// A question over the whole of a window, which waits meanwhile.
///
/// A view in the window and not a dialog of its own, so that no window manager can put it behind
/// the floating panel or beside it. It takes the keyboard until it is answered: Tab stays inside,
/// Escape cancels, Return presses the button that has the focus, at first "Cancel". It gives the
/// keyboard back to the view that had it.
class AlertCard : public QWidget {
    Q_OBJECT

public:
    /// Also when nobody has answered: what it covers is enabled again.
    ~AlertCard() override;

Q_SIGNALS:
    /// Answered, either way; the alert is on its way out.
    void dismissed();

    /// The answer was not "Cancel". Before dismissed(), while the alert still has the keyboard.
    void confirmed();

protected:
    /// Already translated.
    struct Texts {
        QString title;
        QString message;
        QString cancel;
        QString confirm;
    };

    /// Deletes itself when answered. The message scrolls where it has more lines than that.
    AlertCard(const AppPreferences &preferences, const TextStyle &confirmStyle, int mostLines,
              QWidget *window);

    /// To be called by the constructor, and with other texts whenever the language changes.
    void present(const Texts &texts);
    [[nodiscard]] const AppPreferences &preferences() const noexcept { return m_preferences; }
    void nameParts(const QString &card, const QString &cancel, const QString &confirm);
    void setConfirmVisible(bool isVisible);

    /// For a message that is a list: its lines begin below each other.
    void alignMessageAtStart();

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
    [[nodiscard]] QList<QWidget *> stops() const;

    const AppPreferences &m_preferences;
    const QPointer<QWidget> m_hadFocus;
    QWidget *const m_card;
    TextLabel *const m_title;
    TextLabel *const m_message;
    ScrolledText *const m_text;
    AlertButton *const m_cancel;
    AlertButton *const m_confirm;
};
