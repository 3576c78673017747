// SPDX-License-Identifier: MIT
#include "AlertCard.h"

#include "AccessibleRole.h"
#include "AlertButton.h"
#include "AppPreferences.h"
#include "GlassSurface.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "ScrolledText.h"
#include "TextLabel.h"

#include <QAccessible>
#include <QKeyEvent>
#include <algorithm>
#include <initializer_list>

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

AlertCard::AlertCard(const AppPreferences &preferences, const TextStyle &confirmStyle,
                     int mostLines, QWidget *window)
    : QWidget(window)
    , m_preferences(preferences)
    , m_hadFocus(window->focusWidget())
    , m_card(new QWidget(this))
    , m_title(makeText(m_card, TextStyles::alertTitle))
    , m_message(makeText(m_card, TextStyles::alertMessage))
    , m_text(new ScrolledText(m_message, mostLines, m_card))
    , m_cancel(new AlertButton(TextStyles::alertCancel, m_card))
    , m_confirm(new AlertButton(confirmStyle, m_card))
{
    setAccessibleRole(this, QAccessible::AlertMessage);
    setAccessiblyModal(this);

    column(m_card,
           {m_title, gap(Metrics::belowAlertTitle), m_text, gap(Metrics::aboveAlertButtons),
            row({filling(m_cancel), filling(m_confirm)}, {Metrics::alertButtonSpacing, {}})},
           {0, Metrics::alertPadding});

    connect(m_cancel, &QAbstractButton::clicked, this, &AlertCard::dismiss);
    connect(m_confirm, &QAbstractButton::clicked, this, [this] {
        // What follows may have the keyboard go elsewhere, which dismiss() leaves alone.
        setWindowEnabled(true);
        Q_EMIT confirmed();
        dismiss();
    });
    window->installEventFilter(this);
    setGeometry(window->rect());
}

AlertCard::~AlertCard()
{
    if (!isHidden())
        setWindowEnabled(true);
}

bool AlertCard::event(QEvent *event)
{
    // Every key is the alert's, so that no shortcut of the window answers in its place.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool AlertCard::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
        placeCard();
    }
    return QWidget::eventFilter(watched, event);
}

bool AlertCard::focusNextPrevChild(bool isNext)
{
    const QList<QWidget *> all = stops();
    const qsizetype here = all.indexOf(focusWidget());
    const qsizetype step = isNext ? 1 : all.size() - 1;
    all[(std::max<qsizetype>(here, 0) + step) % all.size()]->setFocus(Qt::TabFocusReason);
    return true;
}

void AlertCard::keyPressEvent(QKeyEvent *event)
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

void AlertCard::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void AlertCard::paintEvent(QPaintEvent * /*event*/)
{
    GlassSurface::paintCard(this, m_card->geometry());
}

void AlertCard::dismiss()
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
void AlertCard::setWindowEnabled(bool isEnabled)
{
    const auto parts =
        parentWidget()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *const part : parts) {
        if (part != this)
            part->setEnabled(isEnabled);
    }
}

void AlertCard::placeCard()
{
    QRect place(0, 0, Metrics::alertWidth, m_card->heightForWidth(Metrics::alertWidth));
    place.moveCenter(rect().center());
    m_card->setGeometry(place);
    update();
}

QList<QWidget *> AlertCard::stops() const
{
    QList<QWidget *> all;
    for (QWidget *const stop : std::initializer_list<QWidget *>{m_text, m_cancel, m_confirm}) {
        if (!stop->isHidden() && stop->focusPolicy() != Qt::NoFocus)
            all << stop;
    }
    return all;
}

void AlertCard::nameParts(const QString &card, const QString &cancel, const QString &confirm)
{
    setIdentifier(this, card);
    setIdentifier(m_cancel, cancel);
    setIdentifier(m_confirm, confirm);
}

void AlertCard::setConfirmVisible(bool isVisible)
{
    m_confirm->setVisible(isVisible);
}

void AlertCard::alignMessageAtStart()
{
    m_message->setAlignment(Qt::AlignLeading);
}

void AlertCard::present(const Texts &texts)
{
    // The window above is none of the views that have the user's language.
    setLocale(m_preferences.locale());
    m_title->setText(texts.title);
    m_message->setText(texts.message);
    m_text->showFromTop();
    m_cancel->setText(texts.cancel);
    m_confirm->setText(texts.confirm);
    setAccessibleText(this, texts.title, texts.message);
    placeCard();
    if (isVisible())
        return;
    show();
    m_cancel->setFocus(Qt::TabFocusReason);
    setWindowEnabled(false);
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}
