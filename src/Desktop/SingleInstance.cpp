// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "ApplicationAdaptor.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto applicationInterface = "org.freedesktop.Application"_L1;

/// In milliseconds, of the bus and of the other instance, which may be busy reading its notes.
constexpr int longestWait = 1500;

constexpr auto displayKey = "org.quillmark.display"_L1;

/// Without the number of a screen of that display.
QString displayOf(const QString &name)
{
    const qsizetype colon = name.lastIndexOf(u':');
    const qsizetype point = name.indexOf(u'.', colon);
    return colon == -1 ? name : name.first(point == -1 ? name.size() : point);
}

/// What the desktop told this process about its start, under the names that the receiver knows.
QVariantMap startupData()
{
    QVariantMap data;
    if (qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"))
        data.insert(u"desktop-startup-id"_s, qEnvironmentVariable("DESKTOP_STARTUP_ID"));
    if (qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"))
        data.insert(u"activation-token"_s, qEnvironmentVariable("XDG_ACTIVATION_TOKEN"));
    if (qEnvironmentVariableIsSet("DISPLAY"))
        data.insert(displayKey, displayOf(qEnvironmentVariable("DISPLAY")));
    return data;
}

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
    , m_startupData(startupData())
{
    new ApplicationAdaptor(*this); // Found by its parent when the object is registered.
}

QDBusMessage SingleInstance::callFor(Wish wish) const
{
    const auto call = [](QLatin1StringView interface, QLatin1StringView method) {
        return QDBusMessage::createMethodCall(QLatin1StringView(busName),
                                              QLatin1StringView(objectPath), interface, method);
    };
    switch (wish) {
    case Wish::open:
        return call(applicationInterface, "Activate"_L1) << m_startupData;
    case Wish::showNotes:
        return call(applicationInterface, "ActivateAction"_L1)
               << QString::fromLatin1(showNotes) << QVariantList() << m_startupData;
    case Wish::none:
        break;
    }
    return call("org.freedesktop.DBus.Peer"_L1, "Ping"_L1);
}

SingleInstance::Claim SingleInstance::claim(Wish wish)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Claim::granted;
    bus.interface()->setTimeout(longestWait);

    // The object first: a second start may ask for it as soon as the name is taken.
    bus.registerObject(QLatin1StringView(objectPath), this, QDBusConnection::ExportAdaptors);
    if (takeName())
        return Claim::granted;

    auto call = callFor(wish);
    call.setAutoStartService(false);
    const QDBusMessage answer = bus.call(call, QDBus::Block, longestWait);
    const bool isAnswered = answer.type() == QDBusMessage::ReplyMessage;
    const bool isOnOtherDisplay = answer.errorName() == QLatin1StringView(otherDisplayError);
    // Without an answer it may have been about to end.
    if (!isAnswered && !isOnOtherDisplay && takeName())
        return Claim::granted;

    bus.unregisterObject(QLatin1StringView(objectPath));
    if (isAnswered)
        return Claim::passedOn;
    if (isOnOtherDisplay)
        return Claim::onOtherDisplay;
    return QDBusError(answer).type() == QDBusError::NoReply ? Claim::unanswered : Claim::taken;
}

bool SingleInstance::isForOtherDisplay(const QVariantMap &startupData) const
{
    return startupData.contains(displayKey) && m_startupData.contains(displayKey) &&
           startupData[displayKey] != m_startupData[displayKey];
}

bool SingleInstance::takeName()
{
    QDBusConnectionInterface &bus = *QDBusConnection::sessionBus().interface();
    const auto answer = bus.registerService(QLatin1StringView(busName));
    // A bus that does not answer is as good as none.
    if (!answer.isValid())
        return true;
    if (answer.value() != QDBusConnectionInterface::ServiceRegistered)
        return false;
    // What the bus held back for the name comes before its next answer. Qt passes calls on only
    // once the event loop runs.
    m_isHearingWhoStartedIt = true;
    QMetaObject::invokeMethod(this, &SingleInstance::hearWhoStartedIt, Qt::QueuedConnection);
    return true;
}

void SingleInstance::hearWhoStartedIt()
{
    auto *const answer = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().interface()->asyncCall(u"GetId"_s), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        m_isHearingWhoStartedIt = false;
        answer->deleteLater();
    });
}
