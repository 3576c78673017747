// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

/// The least that any program has to do for a folder of notes, in plain system calls: nothing is
/// parsed, hashed, remembered or checked. What the storage is measured against.
namespace PlainStorage {

/// Lists the folder and looks at every file. Answers how many bytes they have.
std::size_t look(const std::string &dataFolder);

/// Looks at every file, links each into a new folder beside, but for one note, which it writes
/// there; puts all that is new on the disk. What is new stays, as ".stage".
void linkAndWrite(const std::string &dataFolder, const std::string &noteName,
                  const std::string &bytes);

/// Removes what linkAndWrite() left.
void removeStage(const std::string &dataFolder);

/// Lists the folder and reads every file. Answers the number of bytes.
std::size_t load(const std::string &dataFolder);

} // namespace PlainStorage
