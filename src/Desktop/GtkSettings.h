// SPDX-License-Identifier: MIT
#pragma once

#include "ToolkitSettings.h"

#include <QFileSystemWatcher>
#include <QObject>

/// The user's settings files of the GTK toolkit, gtk-4.0/settings.ini before gtk-3.0/settings.ini
/// in the folder for settings, and their changes. Files that are missing, or cannot be read, say
/// nothing. Internal to Desktop.
class GtkSettings final : public QObject {
    Q_OBJECT

public:
    explicit GtkSettings(QObject *parent = nullptr);

    [[nodiscard]] const ToolkitSettings &settings() const noexcept { return m_settings; }

Q_SIGNALS:
    void changed();

private:
    void follow();

    QFileSystemWatcher m_watcher;
    ToolkitSettings m_settings;
};
