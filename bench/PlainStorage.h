// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

/// The least that any program has to do for a folder of notes, in plain system calls: nothing is
/// parsed, hashed, remembered or checked. What the storage is measured against.
namespace PlainStorage {

/// Links every file of the folder into a new one, writes one of the notes anew, puts all on the
/// disk, reads the old files once, exchanges the folders and removes the old one.
void saveOneNote(const std::string &dataFolder, const std::string &noteName,
                 const std::string &bytes);

/// Lists the folder and reads every file. Answers the number of bytes.
std::size_t load(const std::string &dataFolder);

} // namespace PlainStorage
