// SPDX-License-Identifier: MIT
#pragma once

#include "NoteRepository.h"

/// Keeps the notes in memory only. Never fails and checks nothing.
class MemoryNoteRepository final : public NoteRepository {
public:
    explicit MemoryNoteRepository(NoteSnapshot snapshot = {});

    [[nodiscard]] NoteSnapshot load() override;
    void save(const NoteSnapshot &snapshot) override;

private:
    NoteSnapshot m_snapshot;
};
