// SPDX-License-Identifier: MIT
#include "AccessibilityBus.h"

#include "SessionBus.h"
#include "X11Session.h"
#include "XcbReply.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <cstdio>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int longestWait = 800;

/// Where Qt takes the address of the bus from before it asks anybody.
constexpr auto addressVariable = "AT_SPI_BUS_ADDRESS";

constexpr auto busService = "org.a11y.Bus"_L1;
constexpr auto registryService = "org.a11y.atspi.Registry"_L1;

/// Asks who is there already. Nothing when there is nobody, or no answer of any kind in time.
std::optional<QDBusMessage> answerOf(const QDBusConnection &bus, QDBusMessage question,
                                     const QDeadlineTimer &deadline)
{
    question.setAutoStartService(false);
    QDBusMessage answer = bus.call(question, QDBus::Block, int(deadline.remainingTime()));
    if (QDBusError(answer).type() == QDBusError::NoReply)
        return std::nullopt;
    return answer;
}

/// What a program that runs for the whole X session has put down there for all others.
QByteArray addressOfX11Session()
{
    const X11Session *const session = X11Session::current();
    if (!session)
        return {};
    const auto request = xcb_get_property(session->connection(), 0, session->root(),
                                          X11Session::atom("AT_SPI_BUS"), XCB_ATOM_STRING, 0, 1024);
    const auto reply = owned(xcb_get_property_reply(session->connection(), request, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

bool isRegistrySilent(const QByteArray &address, const QDeadlineTimer &deadline)
{
    if (!isBusAnswering(address, deadline))
        return true;
    const QString name = u"org.quillmark.Quillmark.Question"_s;
    const QDBusConnection bus =
        QDBusConnection::connectToBus(QString::fromLocal8Bit(address), name);
    const QDBusMessage question = QDBusMessage::createMethodCall(
        registryService, u"/org/a11y/atspi/registry"_s, u"org.freedesktop.DBus.Peer"_s, "Ping"_L1);
    const bool isSilent = bus.isConnected() && !answerOf(bus, question, deadline);
    QDBusConnection::disconnectFromBus(name);
    return isSilent;
}

bool isSilent()
{
    const QDeadlineTimer deadline(longestWait);
    if (const QByteArray given = qgetenv(addressVariable); !given.isEmpty())
        return isRegistrySilent(given, deadline);
    const QByteArray ofX11 = addressOfX11Session();
    QByteArray ofSession;
    if (const QDBusConnection session = QDBusConnection::sessionBus(); session.isConnected()) {
        const std::optional<QDBusMessage> answer =
            answerOf(session,
                     QDBusMessage::createMethodCall(busService, u"/org/a11y/bus"_s, busService,
                                                    u"GetAddress"_s),
                     deadline);
        if (!answer)
            return true;
        ofSession = QDBusReply<QString>(*answer).value().toLocal8Bit();
    }
    return (!ofX11.isEmpty() && isRegistrySilent(ofX11, deadline)) ||
           (!ofSession.isEmpty() && ofSession != ofX11 && isRegistrySilent(ofSession, deadline));
}

} // namespace

void doWithoutSilentAccessibility()
{
    if (!isSilent())
        return;
    std::fputs("The accessibility bus does not answer. Quillmark goes on without screen readers.\n",
               stderr);
    qputenv(addressVariable, "disabled:");
}
