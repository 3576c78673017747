// SPDX-License-Identifier: MIT
#include "LegacySnapshot.h"

#include "JsonError.h"
#include "NoteId.h"
#include "RepositoryError.h"
#include "Utf8.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Numbers are first read wider than a double: one that nobody asks for may be beyond it.
using Json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                  std::uint64_t, long double>;

/// Deeper than any file that a person or a program means.
constexpr std::size_t largestDepth = 500;

/// While this lives, numbers have a point in this thread, whatever the user's language has.
class PlainNumbers {
public:
    PlainNumbers() noexcept
        : m_plain(::newlocale(LC_NUMERIC_MASK, "C", nullptr))
        , m_before(::uselocale(m_plain))
    {
    }
    PlainNumbers(const PlainNumbers &) = delete;
    PlainNumbers &operator=(const PlainNumbers &) = delete;
    ~PlainNumbers()
    {
        ::uselocale(m_before);
        if (m_plain)
            ::freelocale(m_plain);
    }

private:
    const locale_t m_plain;
    const locale_t m_before;
};

/// "1.0" and "1e2" are integers too. A double is exact enough to tell for so short a text, unless
/// it is so small that it became 0.
std::optional<qint64> integer(const std::string &text, double value)
{
    const bool isExact = text.size() <= std::numeric_limits<double>::digits10;
    if (!isExact || std::abs(value) < 1 || std::abs(value) > 1e15 || value != std::trunc(value))
        return std::nullopt;
    return static_cast<qint64>(value);
}

/// What a value is for.
enum class Use : std::uint8_t {
    file,
    version,
    captureDraft,
    editingDrafts,
    draft,
    notes,
    note,
    id,
    body,
    createdAt,
    updatedAt,
    nothing,
};

Use useOfMember(Use object, std::string_view name)
{
    if (object == Use::editingDrafts)
        return Use::draft;
    if (object == Use::file) {
        if (name == "version")
            return Use::version;
        if (name == "captureDraft")
            return Use::captureDraft;
        if (name == "editingDrafts")
            return Use::editingDrafts;
        if (name == "notes")
            return Use::notes;
    }
    if (object == Use::note) {
        if (name == "id")
            return Use::id;
        if (name == "body")
            return Use::body;
        if (name == "createdAt")
            return Use::createdAt;
        if (name == "updatedAt")
            return Use::updatedAt;
    }
    return Use::nothing;
}

/// Builds the snapshot from what the parser finds, one call after the other. It remembers what is
/// wrong first and lets the parser go on, since the version may still come.
class SnapshotBuilder {
public:
    // The parser calls these by their names, and stops when one answers false.
    bool null() { return takeNothing(); }
    bool boolean(bool) { return takeNothing(); }
    bool binary(const std::vector<std::uint8_t> &) { return takeNothing(); }
    bool number_integer(std::int64_t number);
    bool number_unsigned(std::uint64_t number);
    bool number_float(long double number, const std::string &text);
    bool string(const std::string &text);
    bool start_object(std::size_t) { return enter(false); }
    bool key(const std::string &name);
    bool end_object();
    bool start_array(std::size_t) { return enter(true); }
    bool end_array();
    bool parse_error(std::size_t bytesRead, const std::string &token,
                     const nlohmann::detail::exception &error);

    /// The place of the byte with which the text stopped being JSON.
    [[nodiscard]] std::optional<std::size_t> mistake() const noexcept { return m_mistake; }

    /// For a text that is JSON. Throws what was wrong first, and a RepositoryError for a version
    /// other than 1.
    [[nodiscard]] NoteSnapshot finish(const std::filesystem::path &file);

private:
    /// An object or array that is being read.
    struct Container {
        Use use;
        bool isArray;
        qsizetype index = 0;
        std::set<std::string> names = {};
        /// Of the member that is being read, among these names.
        const std::string *name = nullptr;
    };

    struct PartialNote {
        std::optional<QUuid> id;
        std::optional<QString> body;
        std::optional<Timestamp> createdAt;
        std::optional<Timestamp> updatedAt;
    };

    [[nodiscard]] Use use() const;
    [[nodiscard]] QString way() const;
    [[nodiscard]] QString decoded(const std::string &text);

    bool enter(bool isArray);
    bool takeNothing();
    bool takeNumber(std::optional<qint64> integer, double number);
    void takeDraft(const std::string &text);
    void takeNote();
    bool endValue();

    /// For the value that is being read, and the rest of the way from there.
    void fail(Reason reason, QStringView rest = {});
    template <typename T>
    void require(const std::optional<T> &member, QStringView rest);

    std::vector<Container> m_containers;
    PartialNote m_note;
    std::optional<qint64> m_version;
    std::optional<QString> m_captureDraft;
    std::optional<QMap<QString, QString>> m_editingDrafts;
    std::optional<QList<Note>> m_notes;

    struct Failure {
        Reason reason;
        QString way;
    };
    std::optional<Failure> m_failure;
    std::optional<std::size_t> m_mistake;
    Utf8Decoder m_decoder;
};

bool SnapshotBuilder::number_integer(std::int64_t number)
{
    return takeNumber(number, static_cast<double>(number));
}

bool SnapshotBuilder::number_unsigned(std::uint64_t number)
{
    const bool fits = number <= std::uint64_t(std::numeric_limits<qint64>::max());
    return takeNumber(fits ? std::optional(static_cast<qint64>(number)) : std::nullopt,
                      static_cast<double>(number));
}

bool SnapshotBuilder::number_float(long double, const std::string &text)
{
    const double number = std::strtod(text.c_str(), nullptr);
    return takeNumber(integer(text, number), number);
}

bool SnapshotBuilder::string(const std::string &text)
{
    switch (use()) {
    case Use::captureDraft:
        m_captureDraft = decoded(text);
        break;
    case Use::draft:
        takeDraft(text);
        break;
    case Use::id:
        m_note.id = parseId(text);
        if (!m_note.id)
            fail(Reason::jsonWrongValue);
        break;
    case Use::body:
        m_note.body = decoded(text);
        break;
    default:
        return takeNothing();
    }
    return endValue();
}

bool SnapshotBuilder::takeNumber(std::optional<qint64> integer, double number)
{
    const auto takeTime = [&](std::optional<Timestamp> &time) {
        time = Timestamp{number};
        if (!time->hasTextForm())
            fail(Reason::jsonWrongValue);
    };
    switch (use()) {
    case Use::version:
        m_version = integer;
        if (!integer)
            fail(Reason::jsonWrongValue);
        break;
    case Use::createdAt:
        takeTime(m_note.createdAt);
        break;
    case Use::updatedAt:
        takeTime(m_note.updatedAt);
        break;
    default:
        return takeNothing();
    }
    return endValue();
}

/// A value that has no use is passed over, whatever it is.
bool SnapshotBuilder::takeNothing()
{
    if (use() != Use::nothing)
        fail(Reason::jsonWrongValue);
    return endValue();
}

/// A key that is an identifier gets its canonical text: a second key that differs only in case
/// would be a second draft of the same note.
void SnapshotBuilder::takeDraft(const std::string &text)
{
    const std::string &name = *m_containers.back().name;
    const std::optional<QUuid> id = parseId(name);
    const QString key = id ? canonicalText(*id) : decoded(name);
    if (m_editingDrafts->contains(key))
        fail(Reason::jsonTwice);
    m_editingDrafts->insert(key, decoded(text));
}

void SnapshotBuilder::takeNote()
{
    require(m_note.id, u".id");
    require(m_note.body, u".body");
    require(m_note.createdAt, u".createdAt");
    require(m_note.updatedAt, u".updatedAt");
    if (!m_failure)
        m_notes->append({*m_note.id, *m_note.body, *m_note.createdAt, *m_note.updatedAt});
}

bool SnapshotBuilder::enter(bool isArray)
{
    if (m_containers.size() == largestDepth) {
        fail(Reason::jsonTooDeep);
        return false;
    }
    Use content = use();
    const bool isArrayWanted = content == Use::notes;
    const bool isObjectWanted =
        content == Use::file || content == Use::editingDrafts || content == Use::note;
    if (isArray ? !isArrayWanted : !isObjectWanted) {
        if (content != Use::nothing)
            fail(Reason::jsonWrongValue);
        content = Use::nothing;
    }
    if (content == Use::notes)
        m_notes.emplace();
    else if (content == Use::editingDrafts)
        m_editingDrafts.emplace();
    else if (content == Use::note)
        m_note = {};
    m_containers.push_back({.use = content, .isArray = isArray});
    return true;
}

bool SnapshotBuilder::key(const std::string &name)
{
    Container &object = m_containers.back();
    const auto [place, isNew] = object.names.insert(name);
    object.name = &*place;
    if (!isNew)
        fail(Reason::jsonTwice);
    return true;
}

bool SnapshotBuilder::end_object()
{
    const Use ended = m_containers.back().use;
    m_containers.pop_back();
    if (ended == Use::note)
        takeNote();
    return endValue();
}

bool SnapshotBuilder::end_array()
{
    m_containers.pop_back();
    return endValue();
}

bool SnapshotBuilder::endValue()
{
    if (!m_containers.empty())
        ++m_containers.back().index;
    return true;
}

bool SnapshotBuilder::parse_error(std::size_t bytesRead, const std::string &,
                                  const nlohmann::detail::exception &error)
{
    constexpr int numberOutOfRange = 406;
    if (error.id == numberOutOfRange)
        fail(Reason::jsonWrongValue);
    else
        m_mistake = bytesRead - 1;
    return false;
}

Use SnapshotBuilder::use() const
{
    if (m_containers.empty())
        return Use::file;
    const Container &container = m_containers.back();
    if (container.isArray)
        return container.use == Use::notes ? Use::note : Use::nothing;
    return useOfMember(container.use, *container.name);
}

QString SnapshotBuilder::way() const
{
    QString way;
    for (const Container &container : m_containers) {
        if (container.isArray)
            way += u"[%1]"_s.arg(container.index);
        else
            way += (way.isEmpty() ? u""_s : u"."_s) + QString::fromStdString(*container.name);
    }
    return way;
}

QString SnapshotBuilder::decoded(const std::string &text)
{
    const std::optional<QStringView> decoded = m_decoder.decode(text);
    Q_ASSERT(decoded); // The parser lets no other text pass.
    return decoded->toString();
}

void SnapshotBuilder::fail(Reason reason, QStringView rest)
{
    if (!m_failure)
        m_failure = Failure{reason, way().append(rest)};
}

template <typename T>
void SnapshotBuilder::require(const std::optional<T> &member, QStringView rest)
{
    if (!member)
        fail(Reason::jsonMissing, rest);
}

NoteSnapshot SnapshotBuilder::finish(const std::filesystem::path &file)
{
    require(m_version, u"version");
    require(m_notes, u"notes");
    require(m_captureDraft, u"captureDraft");
    require(m_editingDrafts, u"editingDrafts");
    const bool isOther = m_version && *m_version != NoteSnapshot::currentVersion;
    const bool isOtherShape = m_failure && (m_failure->reason == Reason::jsonMissing ||
                                            m_failure->reason == Reason::jsonWrongValue);
    if (isOther && isOtherShape)
        throw JsonError::otherShape(*m_version, m_failure->way).about(file);
    if (m_failure)
        throw JsonError::atWay(m_failure->reason, m_failure->way).about(file);
    if (isOther)
        throw RepositoryError::unsupportedVersion(*m_version).about(file);
    return {.version = *m_version,
            .notes = std::move(*m_notes),
            .captureDraft = std::move(*m_captureDraft),
            .editingDrafts = std::move(*m_editingDrafts)};
}

JsonError syntaxError(QByteArrayView bytes, std::size_t place)
{
    const QByteArrayView before =
        bytes.first(std::min(static_cast<qsizetype>(place), bytes.size()));
    QByteArrayView line = before.sliced(before.lastIndexOf('\n') + 1);
    if (line.size() == before.size() && line.startsWith("\xEF\xBB\xBF"))
        line = line.sliced(3);
    // Every byte but those that continue a character.
    const auto characters = std::ranges::count_if(
        line, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; });
    return JsonError::syntax(before.count('\n') + 1, characters + 1);
}

} // namespace

NoteSnapshot decodeLegacySnapshot(const QByteArray &bytes, const std::filesystem::path &file)
{
    if (!bytes.isValidUtf8())
        throw JsonError::notUtf8().about(file);
    SnapshotBuilder builder;
    {
        const PlainNumbers plainNumbers;
        Json::sax_parse(bytes.begin(), bytes.end(), &builder);
    }
    std::optional<std::size_t> mistake = builder.mistake();
    // The parser takes a NUL for the end.
    if (const qsizetype nul = bytes.indexOf('\0'); !mistake && nul >= 0)
        mistake = static_cast<std::size_t>(nul);
    if (mistake)
        throw syntaxError(bytes, *mistake).about(file);
    return builder.finish(file);
}
