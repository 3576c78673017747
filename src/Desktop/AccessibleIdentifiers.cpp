// SPDX-License-Identifier: MIT
#include "AccessibleIdentifiers.h"

#include "IdentifiersAdaptor.h"

#include <QDBusConnection>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto objectPath = "/org/quillmark/Quillmark/Identifiers"_L1;

/// Qt's own connection, so that a driver finds this under the name under which it found the tree.
QDBusConnection accessibilityBus()
{
    return QDBusConnection(u"a11y"_s);
}

} // namespace

AccessibleIdentifiers::AccessibleIdentifiers(QObject *parent)
    : QObject(parent)
{
    new IdentifiersAdaptor(*this); // Found by its parent when the object is registered.
    QAccessible::installActivationObserver(this);
    if (QAccessible::isActive())
        accessibilityActiveChanged(true);
}

AccessibleIdentifiers::~AccessibleIdentifiers()
{
    QAccessible::removeActivationObserver(this);
    accessibilityActiveChanged(false);
}

void AccessibleIdentifiers::accessibilityActiveChanged(bool isActive)
{
    QDBusConnection bus = accessibilityBus();
    if (!bus.isConnected())
        return;
    if (isActive)
        bus.registerObject(objectPath, this, QDBusConnection::ExportAdaptors);
    else
        bus.unregisterObject(objectPath);
}

QString AccessibleIdentifiers::identifierOf(const QString &accessiblePath) const
{
    // Qt gives an object the path .../accessible/NUMBER.
    bool isNumber = false;
    const auto id = accessiblePath.section(u'/', -1).toUInt(&isNumber);
    const QAccessibleInterface *const found =
        isNumber ? QAccessible::accessibleInterface(id) : nullptr;
    const QObject *const object = found && found->isValid() ? found->object() : nullptr;
    // What the toolkit has named is no name of ours.
    const QString name = object ? object->objectName() : QString();
    return name.startsWith("qt_"_L1) ? QString() : name;
}
