// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QString>

class AccessibleIdentifiers;

/// org.quillmark.Quillmark.Identifiers1, as AccessibleIdentifiers describes it. Internal to
/// Desktop.
class IdentifiersAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillmark.Quillmark.Identifiers1")

public:
    explicit IdentifiersAdaptor(AccessibleIdentifiers &identifiers);

public Q_SLOTS:
    QString IdentifierOf(const QDBusObjectPath &accessible) const;

private:
    const AccessibleIdentifiers &m_identifiers;
};
