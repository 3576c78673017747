// SPDX-License-Identifier: MIT
#include "NotesInterface.h"

#include "NoteId.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QStringConverter>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// More than this is none of ours; the storage has limits of its own.
constexpr qint64 mostBytes = 1LL << 30;

constexpr int seals = F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_SEAL;

struct NamedKind {
    Refusal::Kind kind;
    QLatin1StringView name;
};
constexpr std::array kinds{
    NamedKind{Refusal::Kind::limits, "limits"_L1},
    NamedKind{Refusal::Kind::diskFull, "disk-full"_L1},
    NamedKind{Refusal::Kind::recoveryCopy, "recovery-copy"_L1},
    NamedKind{Refusal::Kind::folder, "folder"_L1},
    NamedKind{Refusal::Kind::inUse, "in-use"_L1},
    NamedKind{Refusal::Kind::disk, "disk"_L1},
};

bool writeAll(int file, const QByteArray &bytes)
{
    for (qsizetype at = 0; at < bytes.size();) {
        const ssize_t count =
            ::write(file, bytes.constData() + at, static_cast<std::size_t>(bytes.size() - at));
        if (count < 0 && errno != EINTR)
            return false;
        at += std::max<ssize_t>(0, count);
    }
    return true;
}

/// All that the memory holds. Without the seals reading it might wait, or end the program.
std::optional<QByteArray> readSealed(int memory, qint64 size)
{
    struct stat status {};
    if ((::fcntl(memory, F_GET_SEALS) & seals) != seals || ::fstat(memory, &status) != 0 ||
        status.st_size != size)
        return std::nullopt;
    QByteArray bytes(size, Qt::Uninitialized);
    for (qint64 at = 0; at < size;) {
        const ssize_t count =
            ::pread(memory, bytes.data() + at, static_cast<std::size_t>(size - at), at);
        if (count == 0 || (count < 0 && errno != EINTR))
            return std::nullopt;
        at += std::max<ssize_t>(0, count);
    }
    return bytes;
}

std::optional<QString> decoded(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless |
                                                       QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

Refusal refusalFrom(const QVariantList &answer)
{
    const QString name = answer[0].toString();
    Refusal refusal;
    for (const NamedKind &kind : kinds) {
        if (name == kind.name)
            refusal.kind = kind.kind;
    }
    refusal.message.key = answer[1].toString();
    const QVariant list = answer[2].userType() == qMetaTypeId<QDBusArgument>()
                              ? QVariant(qdbus_cast<QVariantList>(answer[2]))
                              : answer[2];
    for (const QVariant &argument : list.toList()) {
        if (argument.typeId() == QMetaType::LongLong)
            refusal.message.arguments << qint64(argument.toLongLong());
        else
            refusal.message.arguments << argument.toString();
    }
    return refusal;
}

NotesInterface::Answer::Kind kindOf(const QDBusMessage &answer)
{
    using Kind = NotesInterface::Answer::Kind;
    // What the bus says of a program that it is not to start; Qt has no number for it.
    if (answer.errorName() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1)
        return Kind::absent;
    switch (QDBusError(answer).type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
    case QDBusError::NoNetwork:
        return Kind::absent;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return Kind::silent;
    default:
        return Kind::notOffered;
    }
}

} // namespace

namespace NotesInterface {

SealedTexts::SealedTexts(int descriptor) noexcept
    : m_descriptor(descriptor)
{
}

SealedTexts::SealedTexts(SealedTexts &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_sizes(std::move(other.m_sizes))
{
}

SealedTexts::~SealedTexts()
{
    if (m_descriptor != -1)
        ::close(m_descriptor);
}

std::optional<SealedTexts> SealedTexts::of(const QList<Note> &notes)
{
    SealedTexts texts(::memfd_create("notes", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (texts.m_descriptor == -1)
        return std::nullopt;
    for (const Note &note : notes) {
        const QByteArray bytes = note.body.toUtf8();
        if (!writeAll(texts.m_descriptor, bytes))
            return std::nullopt;
        texts.m_sizes << qulonglong(bytes.size());
    }
    if (::fcntl(texts.m_descriptor, F_ADD_SEALS, seals) != 0)
        return std::nullopt;
    return texts;
}

std::optional<QList<Note>> notesFrom(const QStringList &identifiers, const QStringList &times,
                                     const QList<qulonglong> &sizes, int texts)
{
    if (sizes.size() != identifiers.size() || times.size() != 2 * identifiers.size())
        return std::nullopt;
    qint64 total = 0;
    for (const qulonglong size : sizes) {
        if (size > qulonglong(mostBytes) || total > mostBytes)
            return std::nullopt;
        total += qint64(size);
    }
    const std::optional<QByteArray> bytes = readSealed(texts, total);
    if (!bytes)
        return std::nullopt;
    QList<Note> notes;
    notes.reserve(identifiers.size());
    qsizetype at = 0;
    for (qsizetype i = 0; i < identifiers.size(); ++i) {
        const auto size = qsizetype(sizes[i]);
        const std::optional<QUuid> id = parseId(QStringView(identifiers[i]));
        const std::optional<Timestamp> created = Timestamp::fromIso8601(times[2 * i]);
        const std::optional<Timestamp> updated = Timestamp::fromIso8601(times[2 * i + 1]);
        const std::optional<QString> body = decoded(QByteArrayView(*bytes).sliced(at, size));
        if (!id || !created || !updated || !body)
            return std::nullopt;
        notes << Note{*id, *body, *created, *updated};
        at += size;
    }
    return notes;
}

QVariantList answerFor(const std::optional<Refusal> &refusal)
{
    if (!refusal)
        return {QString(), QString(), QVariantList()};
    QString name;
    for (const NamedKind &kind : kinds) {
        if (kind.kind == refusal->kind)
            name = kind.name;
    }
    QVariantList arguments;
    for (const FormatArgument &argument : refusal->message.arguments)
        std::visit([&](const auto &value) { arguments << QVariant::fromValue(value); }, argument);
    return {name, refusal->message.key, arguments};
}

Answer addThere(const std::filesystem::path &dataFolder, const QList<Note> &notes,
                std::chrono::milliseconds most)
{
    return addThere(QDBusConnection::sessionBus(), dataFolder, notes, most);
}

Answer addThere(const QDBusConnection &bus, const std::filesystem::path &dataFolder,
                const QList<Note> &notes, std::chrono::milliseconds most)
{
    if (!bus.isConnected())
        return {};
    const std::optional<SealedTexts> texts = SealedTexts::of(notes);
    if (!texts)
        return {};
    QStringList identifiers;
    QStringList times;
    for (const Note &note : notes) {
        identifiers << canonicalText(note.id);
        times << note.createdAt.toIso8601() << note.updatedAt.toIso8601();
    }
    auto call =
        QDBusMessage::createMethodCall(QLatin1StringView(busName), QLatin1StringView(objectPath),
                                       QLatin1StringView(interfaceName), QLatin1StringView(method));
    call.setAutoStartService(false);
    call << QByteArray::fromStdString(dataFolder.native()) << identifiers << times
         << QVariant::fromValue(texts->sizes())
         << QVariant::fromValue(QDBusUnixFileDescriptor(texts->descriptor()));
    const QDBusMessage answer = bus.call(call, QDBus::Block, int(most.count()));
    if (answer.type() != QDBusMessage::ReplyMessage)
        return {kindOf(answer), {}};
    const QVariantList parts = answer.arguments();
    if (answer.signature() != "ssav"_L1)
        return {Answer::Kind::notOffered, {}};
    if (parts[0].toString().isEmpty())
        return {Answer::Kind::saved, {}};
    if (parts[0].toString() == QLatin1StringView(otherFolder))
        return {Answer::Kind::elsewhere, {}};
    return {Answer::Kind::refused, refusalFrom(parts)};
}

} // namespace NotesInterface
