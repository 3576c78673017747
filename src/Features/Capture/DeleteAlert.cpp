// SPDX-License-Identifier: MIT
#include "DeleteAlert.h"

#include "AccessibleRole.h"
#include "AlertButton.h"
#include "AppPreferences.h"
#include "GlassSurface.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "TextLabel.h"

#include <QAccessible>
#include <QKeyEvent>

using namespace Qt::Literals::StringLiterals;

namespace {

TextLabel *makeText(QWidget *parent, const TextStyle &style)
{
    auto *label = new TextLabel(style, parent);
    label->setAlignment(Qt::AlignHCenter);
    label->setWraps(true);
    return label;
}

} // namespace

DeleteAlert::DeleteAlert(const AppPreferences &preferences, QWidget *window)
    : QWidget(window)
    , m_preferences(preferences)
    , m_hadFocus(window->focusWidget())
    , m_card(new QWidget(this))
    , m_title(makeText(m_card, TextStyles::alertTitle))
    , m_message(makeText(m_card, TextStyles::alertMessage))
    , m_cancel(named(u"cancelDelete"_s, new AlertButton(TextStyles::alertCancel, m_card)))
    , m_delete(named(u"confirmDelete"_s, new AlertButton(TextStyles::alertDelete, m_card)))
{
    setObjectName(u"deleteAlert"_s);
    setAccessibleRole(this, QAccessible::AlertMessage);
    setAccessiblyModal(this);

    column(m_card,
           {m_title, gap(Metrics::belowAlertTitle), m_message, gap(Metrics::aboveAlertButtons),
            row({filling(m_cancel), filling(m_delete)}, {Metrics::alertButtonSpacing, {}})},
           {0, Metrics::alertPadding});

    connect(&m_preferences, &AppPreferences::languageChanged, this, &DeleteAlert::render);
    connect(m_cancel, &QAbstractButton::clicked, this, &DeleteAlert::dismiss);
    connect(m_delete, &QAbstractButton::clicked, this, [this] {
        // What follows may have the keyboard go elsewhere, which dismiss() leaves alone.
        setWindowEnabled(true);
        Q_EMIT confirmed();
        dismiss();
    });
    window->installEventFilter(this);

    setGeometry(window->rect());
    render();
    show();
    m_cancel->setFocus(Qt::TabFocusReason);
    setWindowEnabled(false);
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

DeleteAlert::~DeleteAlert()
{
    if (!isHidden())
        setWindowEnabled(true);
}

bool DeleteAlert::event(QEvent *event)
{
    // Every key is the alert's, so that no shortcut of the window answers in its place.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool DeleteAlert::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
        placeCard();
    }
    return QWidget::eventFilter(watched, event);
}

bool DeleteAlert::focusNextPrevChild(bool)
{
    AlertButton *const other = m_cancel->hasFocus() ? m_delete : m_cancel;
    other->setFocus(Qt::TabFocusReason);
    return true;
}

void DeleteAlert::keyPressEvent(QKeyEvent *event)
{
    // But for the key that quits the program, which asks for itself.
    event->setAccepted(!event->matches(QKeySequence::Quit));
    switch (event->key()) {
    case Qt::Key_Escape:
        dismiss();
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
        focusNextPrevChild(event->key() == Qt::Key_Right);
        break;
    default:
        break;
    }
}

void DeleteAlert::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void DeleteAlert::paintEvent(QPaintEvent * /*event*/)
{
    GlassSurface::paintCard(this, m_card->geometry());
}

void DeleteAlert::dismiss()
{
    parentWidget()->removeEventFilter(this);
    setWindowEnabled(true);
    // Before it is hidden: the keyboard would come by the other button on its way.
    if (m_hadFocus && isAncestorOf(window()->focusWidget()))
        m_hadFocus->setFocus(Qt::PopupFocusReason);
    hide();
    deleteLater();
    Q_EMIT dismissed();
}

/// Assistive tools press what they find; they do not see what lies above it.
void DeleteAlert::setWindowEnabled(bool isEnabled)
{
    const auto parts =
        parentWidget()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *const part : parts) {
        if (part != this)
            part->setEnabled(isEnabled);
    }
}

void DeleteAlert::placeCard()
{
    QRect place(0, 0, Metrics::alertWidth, m_card->heightForWidth(Metrics::alertWidth));
    place.moveCenter(rect().center());
    m_card->setGeometry(place);
    update();
}

void DeleteAlert::render()
{
    // The window above is none of the views that have the user's language.
    setLocale(m_preferences.locale());
    m_title->setText(m_preferences.text(u"Delete this note?"_s));
    m_message->setText(m_preferences.text(
        u"This removes the note and its editing draft from this Mac. You cannot undo this in the app."_s));
    m_cancel->setText(m_preferences.text(u"Cancel"_s));
    m_delete->setText(m_preferences.text(u"Delete"_s));
    setAccessibleText(this, m_title->text(), m_message->text());
    placeCard();
}
