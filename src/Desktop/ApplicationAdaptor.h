// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class SingleInstance;

/// org.freedesktop.Application as the Desktop Entry Specification gives it: how a desktop starts a
/// program through the bus. What is opened becomes a note; the actions are those of the desktop
/// entry, "new-note" and "show-notes". Internal to Desktop.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance &instance);

public Q_SLOTS:
    void Activate(const QVariantMap &startupData, const QDBusMessage &call);
    void Open(const QStringList &files, const QVariantMap &startupData);
    void ActivateAction(const QString &action, const QVariantList &parameters,
                        const QVariantMap &startupData, const QDBusMessage &call);

private:
    static void refuse(const QDBusMessage &call, const QString &error, const QString &reason);

    SingleInstance &m_instance;
};
