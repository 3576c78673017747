// SPDX-License-Identifier: MIT
#include "Composition.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QWidget>
#include <QWindow>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// A text that the toolkit has put into a field and that the input method may send once more. There
/// is one input method in a process, and it sends to whatever field has the keyboard.
class Echo {
public:
    void expect(const QString &text)
    {
        m_text = text;
        m_patience.setRemainingTime(longestDelay);
    }

    /// Whether the event is it. Any other one means that it does not come.
    bool isIn(const QInputMethodEvent &event)
    {
        if (event.preeditString().isEmpty() && event.commitString().isEmpty())
            return false;
        const QString expected = std::exchange(m_text, {});
        return !expected.isEmpty() && !m_patience.hasExpired() && event.preeditString().isEmpty() &&
               event.commitString() == expected;
    }

private:
    static constexpr std::chrono::milliseconds longestDelay = 1s;

    QString m_text;
    QDeadlineTimer m_patience;
};

/// How long after a composition has vanished a word may still come of it.
constexpr std::chrono::milliseconds longestWait{100};

Echo &echo()
{
    static Echo theOne;
    return theOne;
}

} // namespace

Composition::Composition(QWidget *field)
    : QObject(field)
    , m_field(field)
{
    field->installEventFilter(this);
}

void Composition::end()
{
    if (!isGoingOn())
        return;
    const QString shown = m_text;
    m_hasCommitted = false;
    QInputMethod *const inputMethod = QGuiApplication::inputMethod();
    inputMethod->commit();
    if (m_hasCommitted) {
        echo().expect(shown);
        return;
    }
    inputMethod->reset();
    if (m_hasCommitted)
        return;
    // It leaves it to us. The text on screen is what the user means.
    QInputMethodEvent event;
    event.setCommitString(shown);
    QCoreApplication::sendEvent(m_field, &event);
}

void Composition::endIn(const QWidget &view)
{
    const auto compositions = view.findChildren<Composition *>();
    for (Composition *const composition : compositions) {
        Q_EMIT composition->fieldIsLeft();
        composition->end();
        composition->forgetCancelled();
    }
}

bool Composition::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field)
        return filterOfField(event);
    const bool isLeft = event->type() == QEvent::FocusAboutToChange && m_field->isVisible();
    if (isLeft || event->type() == QEvent::MouseButtonPress) {
        // Before the toolkit commits in its own way.
        end();
        forgetCancelled();
    }
    return false;
}

bool Composition::filterOfField(QEvent *event)
{
    switch (event->type()) {
    case QEvent::InputMethod: {
        const auto &composed = *static_cast<QInputMethodEvent *>(event);
        if (echo().isIn(composed))
            return true;
        if (isCancelled(composed)) {
            m_vanished.clear();
            return true;
        }
        follow(composed);
        return false;
    }
    case QEvent::KeyPress:
        // The input method has had it and is done with all keys before.
        m_word = {};
        return false;
    case QEvent::Show:
        m_field->window()->windowHandle()->installEventFilter(this);
        return false;
    default:
        return false;
    }
}

void Composition::follow(const QInputMethodEvent &event)
{
    const QString before = std::exchange(m_text, event.preeditString());
    const bool hasCommitted = !event.commitString().isEmpty();
    m_hasCommitted = m_hasCommitted || hasCommitted;
    if (isGoingOn() || hasCommitted) {
        m_vanished.clear();
    } else if (!before.isEmpty()) {
        m_vanished = before;
        m_word.setRemainingTime(longestWait);
    }
}

bool Composition::isCancelled(const QInputMethodEvent &event) const
{
    return !m_vanished.isEmpty() && m_word.hasExpired() && event.preeditString().isEmpty() &&
           event.commitString() == m_vanished;
}

void Composition::forgetCancelled()
{
    if (!std::exchange(m_vanished, {}).isEmpty())
        QGuiApplication::inputMethod()->reset();
}
