// SPDX-License-Identifier: MIT
#pragma once

#include "SelectionWatch.h"
#include "ToolkitSettings.h"

/// The settings that a desktop's settings manager keeps on the X server for all toolkits, and their
/// changes: bytes in a property of the window that owns the selection _XSETTINGS_S0, see
/// XSettingsFormat. Where there is no manager nothing is said. Internal to Desktop.
class XSettings final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit XSettings(QObject *parent = nullptr);
    ~XSettings() override;

    [[nodiscard]] const ToolkitSettings &settings() const noexcept { return m_settings; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

Q_SIGNALS:
    void changed();

private:
    void follow();
    void read();

    const xcb_atom_t m_property;
    SelectionWatch m_manager;
    ToolkitSettings m_settings;
};
