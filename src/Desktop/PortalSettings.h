// SPDX-License-Identifier: MIT
#pragma once

#include "ToolkitSettings.h"

#include <QMap>
#include <QObject>
#include <QVariant>

class QDBusMessage;
class QDBusVariant;

/// What the desktop's settings portal says, and its changes.
///
/// The portal is never waited for: what it answers arrives later as changed(). Without a portal
/// nothing is said.
class PortalSettings final : public QObject {
    Q_OBJECT

public:
    /// Settings by their group and key.
    using Groups = QMap<QString, QVariantMap>;

    explicit PortalSettings(QObject *parent = nullptr);

    /// Of what is common to all desktops, and of what one desktop says in a group of its own. Who
    /// has "no preference" leaves it open.
    [[nodiscard]] static AppearanceWishes wishes(const Groups &groups);
    [[nodiscard]] AppearanceWishes wishes() const { return wishes(m_groups); }

    /// GNOME's theme for programs of the GTK toolkit.
    [[nodiscard]] ToolkitSettings toolkit() const;

    /// The portal's answer to ReadAll; none of an error, or of an answer of another type.
    [[nodiscard]] static Groups reading(const QDBusMessage &answer);

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void takeSetting(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void ask();

    Groups m_groups;
};
