// SPDX-License-Identifier: MIT
#include "NoteBatch.h"

#include "NoteFile.h"
#include "Renames.h"
#include "RepositoryError.h"

namespace {

/// More files than this are put on the disk by one call.
constexpr qsizetype mostSyncedAlone = 20;

} // namespace

NoteBatch::Stages::~Stages()
{
    for (const Stage &file : files)
        static_cast<void>(data.unlink(file.name.c_str(), FileKind::file));
}

NoteBatch::NoteBatch(const Directory &data, const NoteFolder &folder, const QList<Note> &notes)
    : m_folder(folder)
    , m_stages(data)
{
    m_stages.files.reserve(static_cast<std::size_t>(notes.size()));
    for (const Note &note : notes) {
        NoteFile file;
        file.place = {Section::notes, NoteFileName::ofNote(note.id)};
        file.note = note;
        const std::string bytes = encodedFile(file, folder.directory().path());
        const std::string name = FileNames::fresh(FileNames::stagePrefix);
        m_stages.files.push_back({name, file.place.name});
        data.orThrow(data.makeFile(name.c_str(), bytes), name);
        if (notes.size() <= mostSyncedAlone)
            data.orThrow(data.syncFile(name.c_str()), name);
    }
    if (notes.size() > mostSyncedAlone)
        data.orThrow(data.syncFileSystem());
}

void NoteBatch::commit()
{
    const Directory &data = m_stages.data;
    const Directory &notes = m_folder.directory(Section::notes);
    while (!m_stages.files.empty()) {
        const Stage &file = m_stages.files.back();
        const Result<void> renamed = renameToFreeName(data.disk(), data.handle(), file.name.c_str(),
                                                      notes.handle(), file.live.c_str());
        if (!renamed && renamed.failure().is(EEXIST))
            throw RepositoryError::externalChange().about(notes.path() / file.live.c_str());
        notes.orThrow(renamed, file.live.c_str());
        m_stages.files.pop_back();
    }
    m_folder.sync();
    data.orThrow(data.sync());
}
