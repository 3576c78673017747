// SPDX-License-Identifier: MIT
#pragma once

#include "KnownFolder.h"
#include "NoteFolder.h"
#include "SnapshotReader.h"

#include <filesystem>

/// The Markdown folder of a data folder as a repository knows it that has just loaded it.
struct LoadedFolder {
    LoadedFolder(Disk &disk, const std::filesystem::path &dataFolder)
        : folder(*NoteFolder::openIfExists(Directory::openOrMake(disk, dataFolder)))
    {
        SnapshotReader reader;
        reader.read(folder);
        snapshot = reader.takeSnapshot();
        known = KnownFolder(reader.takeFiles());
    }

    NoteFolder folder;
    NoteSnapshot snapshot;
    KnownFolder known;
};
