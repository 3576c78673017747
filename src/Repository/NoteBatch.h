// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "NoteFolder.h"

#include <string>
#include <vector>

/// Adds notes to a folder whose other files may be as they like: each as a new file of its own, in
/// whole or not at all. What has not become a note by its end is removed.
class NoteBatch {
public:
    /// Writes them into hidden files of the data folder and puts those on the disk. The arguments
    /// must outlive this. Throws a FileError; nothing is left then.
    NoteBatch(const Directory &data, const NoteFolder &folder, const QList<Note> &notes);

    /// Gives each its name. On return all of them are on the disk. Throws a FileError, and
    /// RepositoryError::externalChange about a name that has been taken meanwhile; those before it
    /// are notes then.
    void commit();

private:
    struct Stage {
        std::string name;
        NoteFileName live;
    };

    /// Those that have not become notes; gone with this.
    struct Stages {
        explicit Stages(const Directory &folder)
            : data(folder)
        {
        }
        Stages(const Stages &) = delete;
        Stages &operator=(const Stages &) = delete;
        ~Stages();

        const Directory &data;
        std::vector<Stage> files;
    };

    const NoteFolder &m_folder;
    Stages m_stages;
};
