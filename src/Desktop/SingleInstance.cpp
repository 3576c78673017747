// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "ApplicationAdaptor.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusReply>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto applicationInterface = "org.freedesktop.Application"_L1;

/// In milliseconds, of the bus and of the other instance, which may be busy reading its notes.
constexpr int longestWait = 1500;

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

/// A bus that does not answer is as good as none.
bool takeName(const QDBusConnection &bus)
{
    const auto answer =
        bus.interface()->registerService(QLatin1StringView(SingleInstance::busName));
    return !answer.isValid() || answer.value() == QDBusConnectionInterface::ServiceRegistered;
}

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
    , m_startupData(startupData())
{
    new ApplicationAdaptor(*this); // Found by its parent when the object is registered.
}

SingleInstance::Claim SingleInstance::claim(const QString &action)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Claim::granted;
    bus.interface()->setTimeout(longestWait);

    // The object first: a second start may ask for it as soon as the name is taken.
    bus.registerObject(QLatin1StringView(objectPath), this, QDBusConnection::ExportAdaptors);
    if (takeName(bus))
        return Claim::granted;

    auto call = QDBusMessage::createMethodCall(
        QLatin1StringView(busName), QLatin1StringView(objectPath), applicationInterface,
        action.isEmpty() ? "Activate"_L1 : "ActivateAction"_L1);
    if (!action.isEmpty())
        call << action << QVariantList();
    call << m_startupData;
    call.setAutoStartService(false);
    const QDBusMessage answer = bus.call(call, QDBus::Block, longestWait);
    // Without an answer it may have been about to end.
    const bool isAnswered = answer.type() == QDBusMessage::ReplyMessage;
    if (!isAnswered && takeName(bus))
        return Claim::granted;

    bus.unregisterObject(QLatin1StringView(objectPath));
    if (isAnswered)
        return Claim::passedOn;
    return QDBusError(answer).type() == QDBusError::NoReply ? Claim::unanswered : Claim::taken;
}
