// SPDX-License-Identifier: MIT
#include "ErrorBanner.h"

#include "AccessibleRole.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "PlainButton.h"
#include "ScrolledText.h"
#include "SymbolView.h"
#include "TextLabel.h"
#include "TintedFrame.h"

#include <QAccessible>

using namespace Qt::Literals::StringLiterals;

ErrorBanner::ErrorBanner(QWidget *parent)
    : QWidget(parent)
    , m_message(named(u"errorMessage"_s, new TextLabel(TextStyles::banner, this)))
    , m_text(named(u"errorText"_s, new ScrolledText(m_message, Metrics::bannerMostLines, this)))
    , m_retry(named(u"retry"_s, new PlainButton(TextStyles::bannerAction, {}, this)))
    , m_show(named(u"showFile"_s, new PlainButton(TextStyles::bannerAction, {}, this)))
    , m_reload(named(u"reload"_s, new PlainButton(TextStyles::bannerAction, {}, this)))
    , m_takeIn(named(u"takeIn"_s, new PlainButton(TextStyles::bannerAction, {}, this)))
{
    setIdentifier(this, u"errorBanner"_s);
    setAccessibleRole(this, QAccessible::AlertMessage);

    auto *frame = new TintedFrame(Tone::failure, Metrics::bannerFill, Metrics::bannerRadius, this);
    auto *symbol = new SymbolView(u"exclamationmark.triangle"_s, TextStyles::banner, frame);
    row(frame,
        {aligned(Qt::AlignTop, symbol),
         column({m_text,
                 row({m_reload, m_takeIn, stretch()}, {2 * Metrics::alertButtonSpacing, {}}),
                 stretch()},
                {Metrics::bannerSpacing, {}}),
         column({aligned(Qt::AlignRight, m_retry), aligned(Qt::AlignRight, m_show), stretch()},
                {Metrics::bannerSpacing, {}})},
        {Metrics::bannerSpacing, Metrics::bannerPadding});
    m_show->hide();
    m_reload->hide();
    m_takeIn->hide();
    column(this, {frame}, {0, Metrics::bannerMargins});

    connect(m_retry, &QAbstractButton::clicked, this, &ErrorBanner::retryRequested);
    connect(m_show, &QAbstractButton::clicked, this, &ErrorBanner::showRequested);
    connect(m_reload, &QAbstractButton::clicked, this, &ErrorBanner::reloadRequested);
    connect(m_takeIn, &QAbstractButton::clicked, this, &ErrorBanner::takeInRequested);
    hide();
}

void ErrorBanner::setMessage(const QString &message)
{
    const bool isNews = !message.isEmpty() && (message != m_message->text() || isHidden());
    m_message->setText(message);
    m_text->showFromTop();
    setAccessibleText(this, message);
    setHidden(message.isEmpty());
    if (isNews) {
        QAccessibleEvent announcement(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&announcement);
    }
}

void ErrorBanner::setRetryText(const QString &text)
{
    m_retry->setText(text);
}

void ErrorBanner::setRetryEnabled(bool enabled)
{
    m_retry->setEnabled(enabled);
}

void ErrorBanner::setRetryVisible(bool visible)
{
    m_retry->setVisible(visible);
}

void ErrorBanner::setShowText(const QString &text)
{
    m_show->setText(text);
}

void ErrorBanner::setShowVisible(bool visible)
{
    m_show->setVisible(visible);
}

void ErrorBanner::setReloadText(const QString &text)
{
    m_reload->setText(text);
}

void ErrorBanner::setReloadVisible(bool visible)
{
    m_reload->setVisible(visible);
}

void ErrorBanner::setTakeInText(const QString &text)
{
    m_takeIn->setText(text);
}

void ErrorBanner::setTakeInVisible(bool visible)
{
    m_takeIn->setVisible(visible);
}
