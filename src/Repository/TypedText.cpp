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
constexpr std::size_t headerSize = marker.size() + 2 * digestSize;

std::string digestLine(std::string_view bytes)
{
    Sha256 sha256;
    sha256.add(bytes);
    const Sha256::Digest digest = sha256.finish();
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

/// The text after the header, or nothing when the file is torn or goes on from another text.
std::optional<QString> keptText(std::string_view file, const QString &saved)
{
    std::string base;
    if (!file.starts_with(marker) || file.size() < headerSize || !encodeUtf8(saved, base))
        return std::nullopt;
    const std::string_view text = file.substr(headerSize);
    if (file.substr(marker.size(), digestSize) != digestLine(base) ||
        file.substr(marker.size() + digestSize, digestSize) != digestLine(text))
        return std::nullopt;
    Utf8Decoder decoder;
    const std::optional<QStringView> decoded = decoder.decode(text);
    return decoded ? std::optional(decoded->toString()) : std::nullopt;
}

} // namespace

TypedText::TypedText(Disk &disk, std::filesystem::path dataFolder)
    : m_disk(disk)
    , m_dataFolder(std::move(dataFolder))
{
}

void TypedText::keep(const NoteSnapshot &typed, const NoteSnapshot &saved)
{
    const Directory folder = Directory::openOrMake(m_disk, m_dataFolder);
    keepDraft(folder, captureKey, typed.captureDraft, saved.captureDraft);
    const auto &drafts = typed.editingDrafts;
    for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
        if (const std::optional<QString> text = savedText(saved, draft.key()))
            keepDraft(folder, draft.key(), draft.value(), *text);
    }
}

void TypedText::keepDraft(const Directory &folder, const QString &key, const QString &typed,
                          const QString &saved)
{
    const bool isKept = m_kept.contains(key);
    if (isKept ? m_kept.value(key) == typed : typed == saved)
        return;
    std::string base;
    std::string text;
    if (!encodeUtf8(saved, base) || !encodeUtf8(typed, text))
        return;
    const std::string name = std::string(FileNames::typedPrefix) + key.toStdString();
    const std::string fresh = name + '~';
    m_names.insert({name, fresh});
    // One that a killed program left half written.
    static_cast<void>(folder.unlink(fresh.c_str(), FileKind::file));
    const std::string bytes = std::string(marker) + digestLine(base) + digestLine(text) + text;
    folder.orThrow(folder.makeFile(fresh.c_str(), bytes), fresh);
    folder.orThrow(folder.rename(fresh.c_str(), folder, name.c_str()), name);
    m_kept[key] = typed;
}

void TypedText::restore(NoteSnapshot &snapshot)
{
    const Result<Directory> folder = Directory::open(m_disk, m_dataFolder);
    if (!folder && folder.failure().is(ENOENT))
        return;
    if (!folder)
        throw FileError(m_dataFolder, folder.failure());
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
        const std::optional<QString> kept = keptText(bytes, *text);
        if (!kept)
            continue;
        if (key == captureKey)
            snapshot.captureDraft = *kept;
        else
            snapshot.editingDrafts[key] = *kept;
        m_kept[key] = *kept;
    }
}

void TypedText::forget() noexcept
{
    if (m_names.empty())
        return;
    m_kept.clear();
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
