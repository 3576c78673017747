// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "ApplicationAdaptor.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto applicationInterface = "org.freedesktop.Application"_L1;

/// What the desktop told this process about its start, under the names that the receiver knows.
QVariantMap startupData()
{
    QVariantMap data;
    if (qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"))
        data.insert(u"desktop-startup-id"_s, qEnvironmentVariable("DESKTOP_STARTUP_ID"));
    if (qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"))
        data.insert(u"activation-token"_s, qEnvironmentVariable("XDG_ACTIVATION_TOKEN"));
    return data;
}

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
    , m_startupData(startupData())
{
    new ApplicationAdaptor(*this); // Found by its parent when the object is registered.
}

bool SingleInstance::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return true;

    // The object first: a second start may ask for it as soon as the name is taken.
    bus.registerObject(QLatin1StringView(objectPath), this, QDBusConnection::ExportAdaptors);
    const auto answer = bus.interface()->registerService(QLatin1StringView(busName));
    if (!answer.isValid() || answer.value() == QDBusConnectionInterface::ServiceRegistered)
        return true;

    bus.unregisterObject(QLatin1StringView(objectPath));
    auto call =
        QDBusMessage::createMethodCall(QLatin1StringView(busName), QLatin1StringView(objectPath),
                                       applicationInterface, "Activate"_L1);
    call << m_startupData;
    bus.call(call);
    return false;
}
