// SPDX-License-Identifier: MIT
#include "SessionBus.h"

#include <QFileInfo>
#include <QtEndian>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int longestWait = 1000;
constexpr int retryInterval = 10;

constexpr auto addressVariable = "DBUS_SESSION_BUS_ADDRESS";

/// D-Bus Specification, "Message Format".
constexpr qsizetype fixedHeaderSize = 16;
constexpr char methodReturn = 2;
constexpr char error = 3;

void alignTo8(QByteArray &bytes)
{
    bytes.append((8 - bytes.size() % 8) % 8, '\0');
}

QByteArray number(quint32 value)
{
    value = qToLittleEndian(value);
    return {reinterpret_cast<const char *>(&value), sizeof value};
}

/// A call of a method of the bus itself that takes nothing.
QByteArray callToBus(const QByteArray &method, quint32 serial)
{
    QByteArray fields;
    const auto add = [&fields](char code, char type, const QByteArray &value) {
        alignTo8(fields);
        // The value's type is the only one in its signature.
        (((fields += code) += '\1') += type) += '\0';
        fields += number(quint32(value.size())) + value + '\0';
    };
    add(1, 'o', "/org/freedesktop/DBus"_ba);
    add(2, 's', "org.freedesktop.DBus"_ba);
    add(3, 's', method);
    add(6, 's', "org.freedesktop.DBus"_ba);

    QByteArray message("l\1\0\1", 4); // A call that wants its answer, protocol 1.
    message += number(0) + number(serial) + number(quint32(fields.size())) + fields;
    alignTo8(message);
    return message;
}

/// A conversation with a bus, as far as is needed to hear whether it answers.
class Conversation {
public:
    explicit Conversation(QDeadlineTimer deadline)
        : m_deadline(deadline)
        , m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
    }
    Conversation(const Conversation &) = delete;
    Conversation &operator=(const Conversation &) = delete;
    ~Conversation()
    {
        if (m_socket != -1)
            ::close(m_socket);
    }

    /// False when time is over. Whoever refuses does not keep waiting, and so answers.
    [[nodiscard]] bool isAnswered(const sockaddr_un &address, socklen_t size)
    {
        while (::connect(m_socket, reinterpret_cast<const sockaddr *>(&address), size) == -1) {
            if (errno != EAGAIN && errno != EINTR)
                return true;
            if (m_deadline.hasExpired())
                return false;
            ::poll(nullptr, 0, retryInterval); // Too many wait to be let in.
        }
        const QByteArray user = QByteArray::number(::geteuid()).toHex();
        if (!say('\0' + "AUTH EXTERNAL "_ba + user + "\r\n") || !hear(1))
            return isOver();
        while (!m_heard.contains("\r\n"))
            if (!hear(m_heard.size() + 1))
                return isOver();
        if (!m_heard.startsWith("OK"))
            return true;
        m_heard.remove(0, m_heard.indexOf("\r\n") + 2);

        if (!say("BEGIN\r\n"_ba + callToBus("Hello"_ba, 1) + callToBus("GetId"_ba, 2)))
            return isOver();
        for (int answers = 0; answers < 2;) {
            const std::optional<char> kind = nextMessage();
            if (!kind)
                return isOver();
            if (*kind == methodReturn || *kind == error)
                ++answers;
        }
        return true;
    }

private:
    /// After something failed: whether it was the other side that ended it.
    [[nodiscard]] bool isOver() const { return !m_deadline.hasExpired(); }

    [[nodiscard]] bool wait(short events)
    {
        pollfd socket{m_socket, events, 0};
        return ::poll(&socket, 1, int(m_deadline.remainingTime())) == 1 || errno == EINTR;
    }

    [[nodiscard]] bool say(const QByteArray &bytes)
    {
        // Far less than a socket takes at once.
        return ::send(m_socket, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL) ==
               bytes.size();
    }

    /// Until so many bytes have been heard in all. False when there will be no more, or too late.
    [[nodiscard]] bool hear(qsizetype size)
    {
        while (m_heard.size() < size) {
            if (m_deadline.hasExpired() || !wait(POLLIN))
                return false;
            QByteArray some(4096, Qt::Uninitialized);
            const ssize_t count = ::recv(m_socket, some.data(), size_t(some.size()), 0);
            if (count == 0 || (count == -1 && errno != EAGAIN && errno != EINTR))
                return false;
            m_heard += some.first(std::max<ssize_t>(0, count));
        }
        return true;
    }

    /// Hears one message; of what kind it is.
    [[nodiscard]] std::optional<char> nextMessage()
    {
        if (!hear(fixedHeaderSize))
            return std::nullopt;
        const auto numberAt = [this](qsizetype at) -> qsizetype {
            const char *const bytes = m_heard.constData() + at;
            return m_heard.front() == 'l' ? qFromLittleEndian<quint32>(bytes)
                                          : qFromBigEndian<quint32>(bytes);
        };
        const char kind = m_heard[1];
        const qsizetype size = fixedHeaderSize + (numberAt(12) + 7) / 8 * 8 + numberAt(4);
        if (!hear(size))
            return std::nullopt;
        m_heard.remove(0, size);
        return kind;
    }

    const QDeadlineTimer m_deadline;
    const int m_socket;
    QByteArray m_heard;
};

/// Where a bus listens, when that is a socket of this computer; D-Bus Specification, "Server
/// Addresses".
std::optional<QByteArray> socketPath(const QByteArray &address)
{
    if (!address.startsWith("unix:"))
        return std::nullopt;
    for (const QByteArray &pair : address.mid(5).split(',')) {
        const QByteArray value = QByteArray::fromPercentEncoding(pair.mid(pair.indexOf('=') + 1));
        if (pair.startsWith("path="))
            return value;
        if (pair.startsWith("abstract="))
            return '\0' + value;
        if (pair == "runtime=yes")
            return qgetenv("XDG_RUNTIME_DIR") + "/bus";
    }
    return std::nullopt;
}

} // namespace

bool isBusAnswering(const QByteArray &address, QDeadlineTimer deadline)
{
    const std::optional<QByteArray> path = socketPath(address);
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    if (!path || path->size() >= qsizetype(sizeof place.sun_path))
        return true;
    std::copy(path->cbegin(), path->cend(), static_cast<char *>(place.sun_path));
    // The length tells where a name that begins with 0 ends.
    const auto size = socklen_t(offsetof(sockaddr_un, sun_path)) + socklen_t(path->size());
    return Conversation(deadline).isAnswered(place, size);
}

void doWithoutSilentSessionBus()
{
    const QByteArray runtimeFolder = qgetenv("XDG_RUNTIME_DIR");
    QByteArray addresses = qgetenv(addressVariable);
    if (addresses.isEmpty()) {
        const QByteArray path = runtimeFolder + "/bus";
        if (runtimeFolder.isEmpty() || !QFileInfo::exists(QFile::decodeName(path))) {
            qputenv(addressVariable, "disabled:");
            return;
        }
        addresses = "unix:path=" + path;
    }
    const QByteArrayList every = addresses.split(';');
    QByteArrayList answering = every;
    answering.removeIf([&](const QByteArray &address) {
        return !isBusAnswering(address, QDeadlineTimer(longestWait / every.size()));
    });
    if (answering.size() == every.size())
        return;
    if (answering.isEmpty()) {
        std::fputs("The session bus does not answer. Quillmark goes on without it.\n", stderr);
        answering.append("disabled:");
    }
    qputenv(addressVariable, answering.join(';'));
}
