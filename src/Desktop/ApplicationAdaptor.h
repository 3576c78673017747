// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class SingleInstance;

/// org.freedesktop.Application as the Desktop Entry Specification gives it: how a desktop starts a
/// program through the bus. There is no document to open, so that two of the calls ask for the
/// same; the actions are those of the desktop entry, "new-note" and "show-notes". Internal to
/// Desktop.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance &instance);

public Q_SLOTS:
    void Activate(const QVariantMap &startupData);
    void Open(const QStringList &files, const QVariantMap &startupData);
    void ActivateAction(const QString &action, const QVariantList &parameters,
                        const QVariantMap &startupData);

private:
    SingleInstance &m_instance;
};
