// SPDX-License-Identifier: MIT
#include "DesktopAppearance.h"

#include "BlurOffer.h"
#include "GtkSettings.h"
#include "PortalSettings.h"
#include "SelectionWatch.h"
#include "X11Session.h"
#include "XSettings.h"

#include <QGuiApplication>
#include <QStyleHints>

namespace {

xcb_atom_t compositorSelection()
{
    const X11Session *const session = X11Session::current();
    return session ? session->compositorSelection() : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

DesktopAppearance::DesktopAppearance(ColorScheme ofPlatform, QObject *parent)
    : SystemAppearance(parent)
    , m_ofPlatform(ofPlatform)
    , m_portal(std::make_unique<PortalSettings>())
    , m_xSettings(std::make_unique<XSettings>())
    , m_gtkSettings(std::make_unique<GtkSettings>())
    , m_compositor(std::make_unique<SelectionWatch>(compositorSelection()))
    , m_blur(std::make_unique<BlurOffer>())
{
    const auto gather = [this] { this->gather(); };
    connect(m_portal.get(), &PortalSettings::changed, this, gather);
    connect(m_xSettings.get(), &XSettings::changed, this, gather);
    connect(m_gtkSettings.get(), &GtkSettings::changed, this, gather);
    connect(m_compositor.get(), &SelectionWatch::changed, this, gather);
    connect(m_blur.get(), &BlurOffer::changed, this, gather);
    followPlatform();
    gather();
}

DesktopAppearance::~DesktopAppearance() = default;

void DesktopAppearance::followPlatform()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    const auto take = [this](Qt::ColorScheme scheme) {
        m_ofPlatform = scheme == Qt::ColorScheme::Dark ? ColorScheme::dark : ColorScheme::light;
        gather();
    };
    connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this, take);
#endif
}

void DesktopAppearance::gather()
{
    const AppearanceWishes portal = m_portal->wishes();
    const AppearanceWishes toolkit = m_xSettings->settings()
                                         .completedBy(m_gtkSettings->settings())
                                         .completedBy(m_portal->toolkit())
                                         .wishes();
    const bool isX11 = X11Session::current() != nullptr;
    const bool isComposited = !isX11 || m_compositor->owner() != XCB_WINDOW_NONE;
    setValues(
        {.colorScheme = portal.colorScheme.value_or(toolkit.colorScheme.value_or(m_ofPlatform)),
         .reduceMotion = portal.reduceMotion || toolkit.reduceMotion,
         .highContrast = portal.highContrast || toolkit.highContrast,
         .isComposited = isComposited,
         .offersBlur = isComposited && m_blur->isMade()});
}
