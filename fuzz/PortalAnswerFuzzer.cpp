// SPDX-License-Identifier: MIT
// The settings portal may be any program: whatever well-formed message it answers with is read or
// passed over, and what is not of the type of settings changes nothing.
//
// The bytes decide about a type and its values. The message goes over a socket and through the
// D-Bus library, as a portal's does.
#include "PortalSettings.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <span>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr const char *settingGroups = "a{sa{sv}}";

constexpr const char *likelyTypes[] = {settingGroups, "a{sv}", "a{ss}", "a{sa{ss}}", "v", "as"};

constexpr const char *words[] = {"org.freedesktop.appearance",
                                 "org.gnome.desktop.interface",
                                 "org.gnome.desktop.a11y.interface",
                                 "org.kde.kdeglobals.KDE",
                                 "color-scheme",
                                 "contrast",
                                 "reduced-motion",
                                 "high-contrast",
                                 "enable-animations",
                                 "AnimationDurationFactor",
                                 "0",
                                 ""};

constexpr char basicTypes[] = {'y', 'b', 'n', 'q', 'i', 'u', 'x', 't', 'd', 's', 'o', 'g'};

constexpr int deepest = 5;
constexpr int mostMembers = 3;
/// What D-Bus allows to a signature.
constexpr size_t longestType = 255;

void check(bool holds)
{
    if (!holds)
        std::abort();
}

std::string anyType(FuzzedDataProvider &data, int depth);

/// One that a signature has room for.
std::string anyShortType(FuzzedDataProvider &data, int depth)
{
    const std::string type = anyType(data, depth);
    return type.size() <= longestType ? type : "s";
}

std::string anyType(FuzzedDataProvider &data, int depth)
{
    enum class Kind { basic, variant, array, dictionary, structure, kMaxValue = structure };
    switch (depth == 0 ? Kind::basic : data.ConsumeEnum<Kind>()) {
    case Kind::basic:
        return {data.PickValueInArray(basicTypes)};
    case Kind::variant:
        return "v";
    case Kind::array:
        return "a" + anyType(data, depth - 1);
    case Kind::dictionary:
        return std::string("a{") + data.PickValueInArray(basicTypes) + anyType(data, depth - 1) +
               "}";
    case Kind::structure: {
        std::string members = anyType(data, depth - 1);
        for (int i = 1; i < mostMembers && data.ConsumeBool(); ++i)
            members += anyType(data, depth - 1);
        return "(" + members + ")";
    }
    }
    std::abort();
}

/// Makes bytes of values: D-Bus Specification, "Marshaling (Wire Format)", with the least
/// significant byte first.
class Marshaller {
public:
    [[nodiscard]] const std::string &bytes() const { return m_bytes; }

    void align(size_t size) { m_bytes.resize((m_bytes.size() + size - 1) / size * size); }

    void number(uint64_t value, size_t size)
    {
        align(size);
        for (size_t i = 0; i < size; ++i)
            m_bytes += static_cast<char>(value >> (8 * i));
    }

    void text(std::string_view value, size_t lengthSize = 4)
    {
        number(value.size(), lengthSize);
        m_bytes += value;
        m_bytes += '\0';
    }

    /// A value of the first type, which is removed from the types.
    void anyValue(std::string_view &types, FuzzedDataProvider &data, int depth)
    {
        const char type = types.front();
        types.remove_prefix(1);
        switch (type) {
        case 'y':
            return number(data.ConsumeIntegral<uint8_t>(), 1);
        case 'b':
            return number(data.ConsumeBool() ? 1 : 0, 4);
        case 'n':
        case 'q':
            return number(data.ConsumeIntegral<uint16_t>(), 2);
        case 'i':
        case 'u':
            return number(data.ConsumeIntegral<uint32_t>(), 4);
        case 'x':
        case 't':
        case 'd':
            return number(data.ConsumeIntegral<uint64_t>(), 8);
        case 's':
            return text(data.PickValueInArray(words));
        case 'o':
            return text("/");
        case 'g':
            return text("s", 1);
        case 'v': {
            const std::string inside = anyShortType(data, std::max(0, depth - 1));
            text(inside, 1);
            std::string_view rest = inside;
            return anyValue(rest, data, depth - 1);
        }
        case 'a':
            return anyArray(types, data, depth);
        default: // A structure or an entry of a dictionary.
            align(8);
            while (types.front() != ')' && types.front() != '}')
                anyValue(types, data, depth - 1);
            types.remove_prefix(1);
        }
    }

private:
    void anyArray(std::string_view &types, FuzzedDataProvider &data, int depth)
    {
        number(0, 4);
        const size_t lengthEnd = m_bytes.size();
        align(std::string_view("xtd({").find(types.front()) != std::string_view::npos ? 8 : 1);
        // Dry, to find the end of the elements' type also when there is none.
        std::string_view behind = types;
        FuzzedDataProvider nothing(nullptr, 0);
        Marshaller().anyValue(behind, nothing, depth - 1);

        const size_t begin = m_bytes.size();
        while (data.remaining_bytes() > 0 && data.ConsumeIntegralInRange(0, 3) > 0) {
            std::string_view element = types;
            anyValue(element, data, depth - 1);
        }
        const size_t length = m_bytes.size() - begin;
        for (size_t i = 0; i < 4; ++i)
            m_bytes[lengthEnd - 4 + i] = static_cast<char>(length >> (8 * i));
        types = behind;
    }

    std::string m_bytes;
};

/// The other end of a connection without a bus: what would be the portal.
class Portal {
public:
    Portal()
    {
        const std::string path = m_folder.filePath(u"portal"_s).toStdString();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        check(path.size() < sizeof address.sun_path);
        path.copy(static_cast<char *>(address.sun_path), path.size());
        const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        check(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0);
        check(listen(listener, 1) == 0);
        m_connection = QDBusConnection::connectToPeer(
            u"unix:path="_s + QString::fromStdString(path), u"portal"_s);
        m_socket = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        check(m_socket != -1);
        close(listener);
    }

    /// What a question gets for an answer, by way of the library.
    [[nodiscard]] QDBusMessage answer(const std::string &signature, const std::string &body)
    {
        const auto pending = m_connection.asyncCall(
            QDBusMessage::createMethodCall(QString(), u"/"_s, QString(), u"ReadAll"_s));
        if (!std::exchange(m_isAuthenticated, true))
            authenticate();
        const uint32_t question = readQuestion();

        Marshaller message;
        for (const char c : {'l', '\2', '\1', '\1'}) // A reply that wants none, protocol 1.
            message.number(static_cast<uint8_t>(c), 1);
        message.number(body.size(), 4);
        message.number(++m_serial, 4);
        Marshaller fields;
        fields.number(5, 1); // REPLY_SERIAL
        fields.text("u", 1);
        fields.number(question, 4);
        fields.align(8);
        fields.number(8, 1); // SIGNATURE
        fields.text("g", 1);
        fields.text(signature, 1);
        message.number(fields.bytes().size(), 4);
        std::string bytes = message.bytes() + fields.bytes();
        bytes.resize((bytes.size() + 7) / 8 * 8);
        bytes += body;
        send(bytes);

        QDBusPendingCall finished = pending;
        finished.waitForFinished();
        return finished.reply();
    }

private:
    void send(std::string_view bytes)
    {
        while (!bytes.empty())
            bytes.remove_prefix(moved(write(m_socket, bytes.data(), bytes.size())));
    }

    void receive(std::span<char> bytes)
    {
        while (!bytes.empty())
            bytes = bytes.subspan(moved(read(m_socket, bytes.data(), bytes.size())));
    }

    /// How many bytes a call has moved: none where the fuzzer's own clock, a signal every few
    /// seconds, has interrupted it.
    [[nodiscard]] static size_t moved(ssize_t count)
    {
        check(count > 0 || (count == -1 && errno == EINTR));
        return static_cast<size_t>(std::max<ssize_t>(count, 0));
    }

    void authenticate()
    {
        std::string said;
        char c = 0;
        while (said.find("BEGIN\r\n") == std::string::npos) {
            receive({&c, 1});
            said += c;
            if (!said.ends_with("\r\n"))
                continue;
            if (said.find("AUTH EXTERNAL") != std::string::npos)
                send("OK 0123456789abcdef0123456789abcdef\r\n");
            else if (said.find("NEGOTIATE_UNIX_FD") != std::string::npos)
                send("ERROR\r\n");
            if (said.find("BEGIN") == std::string::npos)
                said.clear();
        }
    }

    /// Its serial number.
    [[nodiscard]] uint32_t readQuestion()
    {
        std::array<uint32_t, 4> header{};
        receive({reinterpret_cast<char *>(header.data()), sizeof header});
        std::string rest((header[3] + 7) / 8 * 8 + header[1], '\0');
        receive(rest);
        return header[2];
    }

    QTemporaryDir m_folder;
    QDBusConnection m_connection{QString()};
    int m_socket = -1;
    bool m_isAuthenticated = false;
    uint32_t m_serial = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static int argc = 1;
    static char name[] = "PortalAnswerFuzzer";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static Portal portal;

    FuzzedDataProvider data(bytes, size);
    const std::string type =
        data.ConsumeBool() ? data.PickValueInArray(likelyTypes) : anyShortType(data, deepest);
    Marshaller body;
    std::string_view types = type;
    body.anyValue(types, data, deepest);

    const QDBusMessage answer = portal.answer(type, body.bytes());

    // Were it refused on the way, nothing would be tried here.
    check(answer.type() == QDBusMessage::ReplyMessage);
    check(answer.signature().toStdString() == type);
    const PortalSettings::Groups groups = PortalSettings::reading(answer);
    check(type == settingGroups || groups.isEmpty());
    (void)PortalSettings::wishes(groups);
    QCoreApplication::processEvents(); // What the library hands over goes, before the next.
    return 0;
}
