// SPDX-License-Identifier: MIT
#include "MemoryNoteRepository.h"

MemoryNoteRepository::MemoryNoteRepository(NoteSnapshot snapshot)
    : m_snapshot(std::move(snapshot))
{
}

NoteSnapshot MemoryNoteRepository::load()
{
    return m_snapshot;
}

void MemoryNoteRepository::save(const NoteSnapshot &snapshot)
{
    m_snapshot = snapshot;
}
