// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

class QInputMethodEvent;
class QWidget;

/// What an input method composes in one field and has not put into its text yet.
///
/// A composition belongs to the field in which it began: it ends there when the pointer is pressed
/// in its window, when the window loses the keyboard, and when the program says so because it is
/// about to show something else. What was composed becomes text, once; what the user cancelled
/// does not come back.
///
/// Input methods differ in all of this. The toolkit's part of ibus takes a composition that was
/// cancelled for one that still goes on, and puts it into the text when the keyboard leaves; to
/// reset it at once would take the letters along that are on their way to ibus. ibus itself may put
/// into the text, a moment later and wherever the keyboard is by then, what the toolkit has put
/// there already; that of fcitx answers to being reset, not to being asked to commit.
class Composition final : public QObject {
    Q_OBJECT

public:
    /// Of the field from now on, as its child.
    explicit Composition(QWidget *field);

    [[nodiscard]] bool isGoingOn() const noexcept { return !m_text.isEmpty(); }

    /// Puts what is being composed into the field. Nothing when nothing is.
    void end();

    /// Ends the composition in the view, in whatever field it is. Call it before the keyboard goes
    /// elsewhere.
    static void endIn(const QWidget &view);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// endIn() was called: what else is on its way into the field belongs there now.
    void fieldIsLeft();

private:
    bool filterOfField(QEvent *event);
    void follow(const QInputMethodEvent &event);

    /// Whether the toolkit puts into the text what the user cancelled.
    [[nodiscard]] bool isCancelled(const QInputMethodEvent &event) const;
    void forgetCancelled();

    QWidget *const m_field;
    QString m_text;
    bool m_hasCommitted = false;

    /// A composition that has vanished, and until when a word may still come of it.
    QString m_vanished;
    QDeadlineTimer m_word;
};
