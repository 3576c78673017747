// SPDX-License-Identifier: MIT
#include "PlainButton.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "Symbol.h"
#include "TextLine.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QStyle>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Qt's own interface of a button would do nothing when the checked one of several is to be
/// checked.
class TabInterface final : public QAccessibleWidget {
public:
    explicit TabInterface(PlainButton *tab)
        : QAccessibleWidget(tab, QAccessible::RadioButton)
        , m_tab(tab)
    {
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? m_tab->text() : QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = m_tab->isChecked();
        state.pressed = m_tab->isDown();
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        return QStringList{toggleAction(), pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString &name) override
    {
        if (name == toggleAction() || name == pressAction())
            m_tab->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    PlainButton *const m_tab;
};

QAccessibleInterface *makeInterface(const QString & /*className*/, QObject *object)
{
    auto *const button = qobject_cast<PlainButton *>(object);
    return button && button->isCheckable() ? new TabInterface(button) : nullptr;
}

} // namespace

PlainButton::PlainButton(const TextStyle &style, const QString &symbol, QWidget *parent)
    : ThemedButton(style, parent)
    , m_symbol(symbol)
{
}

PlainButton *PlainButton::makeTab(QWidget *parent)
{
    // Qt keeps each factory once, however often it is installed.
    QAccessible::installFactory(makeInterface);
    auto *tab = new PlainButton(TextStyles::tab, {}, parent);
    tab->setCheckable(true);
    tab->setAutoExclusive(true);
    tab->m_padding = Metrics::tabPadding;
    return tab;
}

PlainButton *PlainButton::makeBack(QWidget *parent)
{
    auto *back = new PlainButton(TextStyles::backButton, u"chevron.left"_s, parent);
    back->m_symbolInset = Metrics::chevronInset;
    return back;
}

QSize PlainButton::sizeHint() const
{
    QSize label = TextLine::size(fontMetrics(), text());
    if (!m_symbol.isEmpty()) {
        const QSize symbol = Symbol::size(textStyle().pixelSize);
        const int between = text().isEmpty() ? 0 : Metrics::plainButtonSpacing;
        label.rwidth() += symbol.width() - m_symbolInset + between;
        label.setHeight(std::max(label.height(), symbol.height()));
    }
    return label.grownBy(m_padding);
}

void PlainButton::focusInEvent(QFocusEvent *event)
{
    // Not QAbstractButton's, which takes the other tabs out of the order of Tab, so that it would
    // stop at the one that had the keyboard last and not at the one that is checked.
    QWidget::focusInEvent(event);
}

void PlainButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = height() / 2.0;
    if (isChecked()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(NoteTheme::color(palette(), Tone::primary, Metrics::tabFill));
        painter.drawRoundedRect(rect(), radius, radius);
    }

    const Tone tone = isCheckable() && !isChecked() ? Tone::secondary : textStyle().tone;
    const QColor color = NoteTheme::color(palette(), tone);
    painter.setOpacity(isEnabled() ? 1 : Metrics::disabledOpacity);
    QRect label = rect().marginsRemoved(m_padding);
    if (!m_symbol.isEmpty()) {
        const int symbolWidth = Symbol::size(textStyle().pixelSize).width();
        const QRect place(label.left() - m_symbolInset, 0, symbolWidth, height());
        Symbol::paint(painter, QStyle::visualRect(layoutDirection(), rect(), place), m_symbol,
                      textStyle().pixelSize, color, textStyle().weight);
        label.setLeft(place.right() + 1 + Metrics::plainButtonSpacing);
    }
    painter.setFont(font());
    painter.setPen(color);
    TextLine::paint(painter, QStyle::visualRect(layoutDirection(), rect(), label), text());
    FocusRing::paint(painter, this, rect(),
                     isCheckable() ? radius : std::min(radius, Metrics::focusRingRadius));
}
