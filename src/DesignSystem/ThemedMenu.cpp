// SPDX-License-Identifier: MIT
#include "ThemedMenu.h"

#include "GlassSurface.h"
#include "Metrics.h"
#include "TextStyle.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QProxyStyle>
#include <QStyleOption>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Draws the surface, its lines and the chosen item; the rest is the application's style.
class MenuStyle final : public QProxyStyle {
public:
    MenuStyle()
        : QProxyStyle("Fusion"_L1)
    {
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        if (element == PE_PanelMenu) {
            GlassSurface::paintPanel(*painter, option->rect, Metrics::menuRadius, option->palette,
                                     QPalette::Window);
        } else if (element != PE_FrameMenu) {
            QProxyStyle::drawPrimitive(element, option, painter, widget);
        }
    }

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        if (element == CE_MenuEmptyArea)
            return;
        const auto *const item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        const bool isItem = element == CE_MenuItem && item;
        if (isItem && item->menuItemType == QStyleOptionMenuItem::Separator) {
            QRect line(
                item->rect.adjusted(Metrics::menuItemRadius, 0, -Metrics::menuItemRadius, 0));
            line.setTop(item->rect.center().y());
            line.setHeight(Metrics::dividerThickness);
            painter->fillRect(line,
                              NoteTheme::color(item->palette, Tone::primary, Metrics::menuBorder));
            return;
        }
        if (!isItem || !item->state.testFlag(State_Selected)) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->fillPath(GlassSurface::outline(item->rect, Metrics::menuItemRadius),
                          NoteTheme::accent());
        painter->restore();
        // What is written on the accent; the style would fill the whole line itself.
        QStyleOptionMenuItem written(*item);
        written.state.setFlag(State_Selected, false);
        for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            written.palette.setColor(role, NoteTheme::color(item->palette, Tone::onAccent));
        QProxyStyle::drawControl(element, &written, painter, widget);
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        switch (metric) {
        case PM_MenuPanelWidth:
            return 0;
        case PM_MenuHMargin:
        case PM_MenuVMargin:
            return Metrics::menuPadding;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
};

/// One for all menus.
QStyle *menuStyle()
{
    static auto *const style = [] {
        auto *const made = new MenuStyle;
        made->setParent(qApp);
        return made;
    }();
    return style;
}

} // namespace

ThemedMenu::ThemedMenu(QWidget *owner)
    : QMenu(owner)
{
    setStyle(menuStyle());
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    takeLook();
    connect(this, &QMenu::aboutToShow, this, &ThemedMenu::takeLook);
    if (owner)
        owner->installEventFilter(this);
}

void ThemedMenu::becomeWindow()
{
    setWindowFlags((windowFlags() & ~Qt::WindowType_Mask) | Qt::Tool | Qt::WindowStaysOnTopHint);
}

bool ThemedMenu::event(QEvent *event)
{
    const bool isHandled = QMenu::event(event);
    if (event->type() == QEvent::WindowDeactivate && windowType() != Qt::Popup)
        close();
    return isHandled;
}

bool ThemedMenu::eventFilter(QObject *receiver, QEvent *event)
{
    if (receiver == parentWidget() && isVisible() &&
        (event->type() == QEvent::PaletteChange || event->type() == QEvent::LocaleChange))
        takeLook();
    return QMenu::eventFilter(receiver, event);
}

void ThemedMenu::resizeEvent(QResizeEvent *event)
{
    QMenu::resizeEvent(event);
    setMask(GlassSurface::windowMask(rect(), Metrics::menuRadius, this));
}

void ThemedMenu::takeLook()
{
    if (const QWidget *owner = parentWidget()) {
        // The owner's palette itself would not do: it has inherited its colours, and inherited
        // ones are not handed on.
        const QPalette &palette = owner->palette();
        setPalette(
            NoteTheme::palette(NoteTheme::colorScheme(palette), NoteTheme::contrast(palette)));
        setLocale(owner->locale());
        setFont(TextStyles::environment.font(owner->locale()));
    }
}
