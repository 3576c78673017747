// SPDX-License-Identifier: MIT
#include "TypedText.h"

#include "Directory.h"
#include "NoteFolder.h"
#include "NoteId.h"
#include "Sha256.h"
#include "Utf8.h"

#include <QByteArray>
#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::string_view marker = FileNames::typedMarker;
constexpr auto captureKey = "capture"_L1;

/// A digest in hexadecimal, and a line end.
constexpr std::size_t digestSize = 65;
/// An identifier, and a line end.
constexpr std::size_t idSize = 37;
constexpr std::size_t headerSize = marker.size() + 2 * digestSize + idSize;

std::string digestLine(std::string_view bytes)
{
    const Sha256Digest digest = sha256(bytes);
    const QByteArray raw(reinterpret_cast<const char *>(digest.data()),
                         static_cast<qsizetype>(digest.size()));
    return raw.toHex().toStdString() + '\n';
}

/// The text of a draft as it was last saved: of a note without a draft its body.
std::optional<QString> savedText(const NoteSnapshot &saved, const QString &key)
{
    if (key == captureKey)
        return saved.captureDraft;
    if (const auto draft = saved.editingDrafts.find(key); draft != saved.editingDrafts.end())
        return *draft;
    const auto note = std::ranges::find(saved.notes, parseId(QStringView(key)), &Note::id);
    return note != saved.notes.end() ? std::optional(note->body) : std::nullopt;
}

std::string nameOf(const QString &key)
{
    return std::string(FileNames::typedPrefix) + key.toStdString();
}

/// The bytes of a kept text; nothing where UTF-8 cannot carry one of the two texts.
std::optional<std::string> fileOf(const QString &typed, const QString &saved,
                                  const QUuid &captureId)
{
    std::string base;
    std::string content;
    if (!encodeUtf8(saved, base) || !encodeUtf8(typed, content))
        return std::nullopt;
    content.insert(0, canonicalText(captureId).toStdString() + '\n');
    return std::string(marker) + digestLine(base) + digestLine(content) + content;
}

struct KeptText {
    QUuid captureId;
    QString text;
};

/// Nothing when the file is torn or goes on from another text.
std::optional<KeptText> parse(std::string_view file, const QString &saved)
{
    std::string base;
    if (!file.starts_with(marker) || file.size() < headerSize || !encodeUtf8(saved, base))
        return std::nullopt;
    const std::string_view content = file.substr(marker.size() + 2 * digestSize);
    if (file.substr(marker.size(), digestSize) != digestLine(base) ||
        file.substr(marker.size() + digestSize, digestSize) != digestLine(content))
        return std::nullopt;
    const std::optional<QUuid> id = parseId(content.substr(0, idSize - 1));
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(content.substr(idSize));
    return id && text ? std::optional(KeptText{*id, text->toString()}) : std::nullopt;
}

bool isAmong(const QList<Note> &notes, const QUuid &id)
{
    return std::ranges::find(notes, id, &Note::id) != notes.end();
}

/// What was captured stands among the notes. Nothing else tells: the draft is as empty after the
/// capture as it was before the first key.
bool isCaptured(const KeptText &kept, const NoteSnapshot &saved)
{
    return isAmong(saved.notes, kept.captureId);
}

} // namespace

TypedText::TypedText(Disk &disk, std::filesystem::path dataFolder)
    : m_disk(disk)
    , m_dataFolder(std::move(dataFolder))
{
}

void TypedText::keep(const NoteSnapshot &typed, const NoteSnapshot &saved, const QUuid &captureId)
{
    const Directory folder = Directory::openOrMake(m_disk, m_dataFolder);
    keepDraft(folder, captureKey, typed.captureDraft, saved.captureDraft, captureId);
    const auto &drafts = typed.editingDrafts;
    for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
        if (const std::optional<QString> text = savedText(saved, draft.key()))
            keepDraft(folder, draft.key(), draft.value(), *text, captureId);
    }
}

void TypedText::keepDraft(const Directory &folder, const QString &key, const QString &typed,
                          const QString &saved, const QUuid &captureId)
{
    auto kept = m_kept.find(key);
    if (typed == (kept != m_kept.end() ? *kept : saved))
        return;
    const std::optional<std::string> bytes = fileOf(typed, saved, captureId);
    if (!bytes)
        return;
    const std::string name = nameOf(key);
    // Before there is a file, of which nobody would know if there was no memory afterwards.
    if (kept == m_kept.end())
        kept = m_kept.insert(key, saved);
    folder.orThrow(write(folder, name, *bytes), name);
    *kept = typed;
    if (key == captureKey)
        m_captureId = captureId;
}

Result<void> TypedText::write(const Directory &folder, const std::string &name,
                              const std::string &bytes)
{
    const std::string fresh = name + '~';
    m_names.insert({name, fresh});
    // One that a killed program left half written.
    static_cast<void>(folder.unlink(fresh.c_str(), FileKind::file));
    if (const auto made = folder.makeFile(fresh.c_str(), bytes); !made)
        return made.failure();
    return folder.rename(fresh.c_str(), folder, name.c_str());
}

void TypedText::keepWhatWasTakenBack(const NoteSnapshot &next, const NoteSnapshot &saved)
{
    const bool isCapture = m_captureId && isAmong(next.notes, *m_captureId);
    for (const QString &key : m_kept.keys()) {
        const std::optional<QString> text = savedText(next, key);
        if ((key == captureKey && isCapture) || !text || text != savedText(saved, key) ||
            m_kept.value(key) == *text)
            continue;
        const Result<Directory> folder = Directory::open(m_disk, m_dataFolder);
        const auto bytes = fileOf(*text, *text, m_captureId.value_or(QUuid()));
        if (folder && bytes && write(*folder, nameOf(key), *bytes))
            m_kept[key] = *text;
    }
}

void TypedText::restore(NoteSnapshot &snapshot)
{
    const Result<Directory> folder = Directory::open(m_disk, m_dataFolder);
    if (!folder && folder.failure().is(ENOENT))
        return;
    if (!folder)
        throw FileError(m_dataFolder, folder.failure());
    m_captureId.reset();
    const NoteSnapshot saved = snapshot;
    const DirectoryListing listing = folder->orThrow(folder->list());
    std::string bytes;
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const std::string_view name = listing.name(entry);
        if (!name.starts_with(FileNames::typedPrefix) || entry.kind != FileKind::file)
            continue;
        m_names.emplace(name);
        const QString key = QString::fromUtf8(name.substr(FileNames::typedPrefix.size()));
        const std::optional<QString> text = savedText(saved, key);
        if (!text)
            continue;
        const std::size_t most = headerSize + NoteFolder::largestFile;
        folder->orThrow(folder->readFile(listing.name(entry), most, bytes), name);
        const std::optional<KeptText> kept = parse(bytes, *text);
        if (!kept || (key == captureKey && isCaptured(*kept, saved)))
            continue;
        if (key == captureKey) {
            snapshot.captureDraft = kept->text;
            m_captureId = kept->captureId;
        } else {
            snapshot.editingDrafts[key] = kept->text;
        }
        m_kept[key] = kept->text;
    }
}

void TypedText::forget() noexcept
{
    if (m_names.empty())
        return;
    m_kept.clear();
    m_captureId.reset();
    // By its path alone: nothing here may need memory.
    const auto handle = uninterrupted([&] { return m_disk.openPath(m_dataFolder.c_str()); });
    if (!handle)
        return;
    const Descriptor folder(m_disk, *handle);
    std::erase_if(m_names, [&](const std::string &name) {
        const auto removed = uninterrupted(
            [&] { return m_disk.unlink(folder.get(), name.c_str(), FileKind::file); });
        return removed || removed.failure().is(ENOENT);
    });
}
