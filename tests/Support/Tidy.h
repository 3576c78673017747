// SPDX-License-Identifier: MIT
#pragma once

#include "NoteRepository.h"

/// Has a repository do at once all that a save leaves for later.
inline void tidyUp(NoteRepository &repository)
{
    while (repository.tidy(std::chrono::hours(1))) {
    }
}
