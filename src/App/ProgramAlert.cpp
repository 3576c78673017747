// SPDX-License-Identifier: MIT
#include "ProgramAlert.h"

#include "AppPreferences.h"
#include "GlassSurface.h"
#include "NoteTheme.h"
#include "PanelHints.h"
#include "Symbol.h"
#include "TextStyle.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QStyle>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The window that the user works in, which is not to cover the alert.
QWidget *openPanel(const QWidget &alert)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *const window : windows) {
        const bool isManaged = !window->windowFlags().testFlag(Qt::X11BypassWindowManagerHint);
        if (window != &alert && window->isVisible() && isManaged && window->windowHandle())
            return window;
    }
    return nullptr;
}

} // namespace

ProgramAlert::ProgramAlert(const AppPreferences *preferences)
{
    setWindowTitle(u"Quillmark"_s);
    const QIcon image = icon();
    setWindowIcon(image);
    const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    setIconPixmap(image.pixmap(QSize(side, side), devicePixelRatioF()));
    setFont(TextStyles::environment.font(preferences ? preferences->locale() : QLocale::c()));

    // The program has no window that the user works in, so the alert could come up behind others.
    setWindowFlag(Qt::WindowStaysOnTopHint);
}

void ProgramAlert::ask()
{
    winId();
    const QPointer<QWidget> panel(openPanel(*this));
    if (panel)
        windowHandle()->setTransientParent(panel->windowHandle());
    show();
    PanelHints::activate(*this);
    exec();
    // Not every window manager gives the keyboard back by itself.
    if (panel && panel->isVisible())
        PanelHints::activate(*panel);
}

QIcon ProgramAlert::icon()
{
    QIcon icon;
    for (const int side : {16, 32, 48, 64, 128}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF disc = QRectF(pixmap.rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.fillPath(GlassSurface::outline(disc, disc.width() / 2), NoteTheme::accent());
        Symbol::paint(painter, disc, u"plus"_s, side / 2, Qt::white, QFont::DemiBold);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}
