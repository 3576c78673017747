// SPDX-License-Identifier: MIT
#pragma once

#include "ExitStatus.h"

#include <string>
#include <vector>

class Console;
class StoredNotes;

/// What the program can do. Each command takes what stands after its name and answers what the
/// shell is told; what went wrong it has said then.
namespace Commands {

using Words = std::vector<std::string>;

/// One new note from the words or, without any, from the standard input. Prints its path.
[[nodiscard]] ExitStatus add(Console &console, StoredNotes &notes, const Words &words);

/// Every note; "--json" alone may follow.
[[nodiscard]] ExitStatus list(Console &console, StoredNotes &notes, const Words &words);

/// The notes that hold the words, as the window finds them.
[[nodiscard]] ExitStatus search(Console &console, StoredNotes &notes, const Words &words);

/// One note, by its identifier or the beginning of that.
[[nodiscard]] ExitStatus show(Console &console, StoredNotes &notes, const Words &words);

/// A readable copy of every note into a folder.
[[nodiscard]] ExitStatus exportTo(Console &console, StoredNotes &notes, const Words &words);

/// One new note from each file, all or none. Prints their paths.
[[nodiscard]] ExitStatus import(Console &console, StoredNotes &notes, const Words &words);

/// What keeps the notes from being used, and what lies beside them. Changes nothing; but with
/// "--repair" it does what repair() does, and "--yes" answers the question.
[[nodiscard]] ExitStatus check(Console &console, StoredNotes &notes, const Words &words);

/// Says what would be taken in, asks, and takes it in.
[[nodiscard]] ExitStatus repair(Console &console, StoredNotes &notes, bool isAnswered);

/// Says how the program is called.
[[nodiscard]] ExitStatus refuseUsage(const Console &console);

} // namespace Commands
