// SPDX-License-Identifier: MIT
#pragma once

#include "SystemAppearance.h"

#include <memory>

class BlurOffer;
class GtkSettings;
class PortalSettings;
class SelectionWatch;
class XSettings;

/// The appearance of the running desktop, followed live.
///
/// Light or dark says the first of these that has a preference: the settings portal; the theme of
/// the GTK toolkit, from the X server's settings manager, the user's settings files or GNOME's
/// settings; the platform that Qt runs on. High contrast and less motion are each a wish of
/// whoever has it. What windows can look like, the X server says.
///
/// Nobody is waited for: what the portal answers arrives later as changed().
class DesktopAppearance final : public SystemAppearance {
    Q_OBJECT

public:
    /// With what the platform's own palette is: where Qt can tell, its changes are followed too.
    explicit DesktopAppearance(ColorScheme ofPlatform, QObject *parent = nullptr);
    ~DesktopAppearance() override;

private:
    void followPlatform();
    void gather();

    ColorScheme m_ofPlatform;
    const std::unique_ptr<PortalSettings> m_portal;
    const std::unique_ptr<XSettings> m_xSettings;
    const std::unique_ptr<GtkSettings> m_gtkSettings;
    const std::unique_ptr<SelectionWatch> m_compositor;
    const std::unique_ptr<BlurOffer> m_blur;
};
