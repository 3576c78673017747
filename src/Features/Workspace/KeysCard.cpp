// SPDX-License-Identifier: MIT
#include "KeysCard.h"

#include "AccessibleRole.h"
#include "AppPreferences.h"
#include "GlassSurface.h"
#include "Metrics.h"
#include "Named.h"
#include "TextLabel.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Key {
    QString keys;
    QString does; ///< before translation
};

std::array<Key, 9> allKeys()
{
    return {{{u"Ctrl+Return"_s, u"Save"_s},
             {u"Esc"_s, u"Fold the editor"_s},
             {u"Ctrl+F"_s, u"Search the notes"_s},
             {u"Ctrl+N"_s, u"Write a new thought"_s},
             {u"Ctrl+Tab"_s, u"Go to the other tab"_s},
             {u"Alt+Left"_s, u"Go back to all notes"_s},
             {u"Delete"_s, u"Delete the chosen note"_s},
             {u"Ctrl+Q"_s, u"Quit Quillmark"_s},
             {u"F1"_s, u"Show the keys"_s}}};
}

} // namespace

KeysCard::KeysCard(const AppPreferences &preferences, QWidget *window)
    : QWidget(window)
    , m_preferences(preferences)
    , m_hadFocus(window->focusWidget())
    , m_card(new QWidget(this))
{
    setIdentifier(this, u"keysCard"_s);
    setAccessibleRole(this, QAccessible::Dialog);
    setAccessiblyModal(this);
    setFocusPolicy(Qt::StrongFocus);
    setLocale(preferences.locale());

    fill();
    QRect place(QPoint(), QSize(Metrics::alertWidth, m_card->sizeHint().height()));
    setGeometry(window->rect());
    place.moveCenter(rect().center());
    m_card->setGeometry(place);
    show();
    setFocus(Qt::PopupFocusReason);
}

void KeysCard::fill()
{
    auto *const grid = new QGridLayout(m_card);
    grid->setContentsMargins(Metrics::alertPadding);
    grid->setHorizontalSpacing(Metrics::alertButtonSpacing);
    grid->setVerticalSpacing(Metrics::belowAlertTitle);
    grid->setColumnStretch(1, 1);

    const QString title = m_preferences.text(u"Keys"_s);
    grid->addWidget(new TextLabel(TextStyles::alertTitle, title, m_card), 0, 0, 1, 2);
    QStringList spoken;
    int line = 1;
    for (const auto &[keys, does] : allKeys()) {
        const QString text = m_preferences.text(does);
        grid->addWidget(new TextLabel(TextStyles::alertCancel, keys, m_card), line, 0);
        grid->addWidget(new TextLabel(TextStyles::alertMessage, text, m_card), line, 1,
                        Qt::AlignRight);
        spoken.append(keys + u": "_s + text);
        ++line;
    }
    setAccessibleText(this, title, spoken.join(u'\n'));
}

void KeysCard::close()
{
    if (m_hadFocus)
        m_hadFocus->setFocus(Qt::PopupFocusReason);
    hide();
    deleteLater();
}

void KeysCard::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    // What is held to press a key with is none.
    if (event->text().isEmpty() && event->key() >= Qt::Key_Shift &&
        event->key() <= Qt::Key_ScrollLock)
        return;
    if (!event->isAutoRepeat())
        close();
}

void KeysCard::mousePressEvent(QMouseEvent * /*event*/)
{
    close();
}

void KeysCard::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    // Another window has the keyboard for a while; within this one the card keeps it.
    if (isVisible() && event->reason() != Qt::ActiveWindowFocusReason &&
        event->reason() != Qt::PopupFocusReason)
        setFocus(Qt::PopupFocusReason);
}

void KeysCard::paintEvent(QPaintEvent * /*event*/)
{
    GlassSurface::paintCard(this, m_card->geometry());
}
