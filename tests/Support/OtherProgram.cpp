// SPDX-License-Identifier: MIT
#include "OtherProgram.h"

/// The folder of a path, open, and the name in it.
class OtherProgram::Place {
public:
    Place(MemoryDisk &disk, const std::string &path)
        : m_unwatched(disk)
        , m_disk(disk)
        , m_folder(disk.openPath(path.substr(0, path.rfind('/') + 1).c_str()))
        , m_name(path.substr(path.rfind('/') + 1))
    {
    }
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;
    ~Place()
    {
        if (m_folder) {
            static_cast<void>(m_disk.sync(*m_folder));
            static_cast<void>(m_disk.close(*m_folder));
        }
    }

    explicit operator bool() const { return static_cast<bool>(m_folder); }
    [[nodiscard]] Disk::Handle folder() const { return *m_folder; }
    [[nodiscard]] const char *name() const { return m_name.c_str(); }

    [[nodiscard]] bool make(const char *name, const std::string &bytes) const
    {
        const Result<Disk::Handle> file = m_disk.makeFile(folder(), name);
        return file && m_disk.write(*file, bytes.data(), bytes.size()) && m_disk.sync(*file) &&
               m_disk.close(*file);
    }

    /// The content of the file that has the name now.
    [[nodiscard]] bool sync() const
    {
        const Result<Disk::Handle> file = m_disk.openFile(folder(), name());
        return file && m_disk.sync(*file) && m_disk.close(*file);
    }

private:
    const MemoryDisk::Unwatched m_unwatched;
    MemoryDisk &m_disk;
    const Result<Disk::Handle> m_folder;
    const std::string m_name;
};

bool OtherProgram::makeFolder(const std::string &path)
{
    if (path.empty() || m_disk.statusAt(path.c_str()))
        return true;
    if (!makeFolder(path.substr(0, path.rfind('/'))))
        return false;
    const Place place(m_disk, path);
    return place && m_disk.makeFolder(place.folder(), place.name());
}

bool OtherProgram::make(const std::string &path, const std::string &bytes)
{
    const Place place(m_disk, path);
    return place && place.make(place.name(), bytes);
}

bool OtherProgram::overwrite(const std::string &path, const std::string &bytes)
{
    const Place place(m_disk, path);
    return place && m_disk.overwrite(place.folder(), place.name(), bytes) && place.sync();
}

bool OtherProgram::replace(const std::string &path, const std::string &bytes)
{
    constexpr const char *fresh = "being written by another program";
    const Place place(m_disk, path);
    return place && m_disk.status(place.folder(), place.name()) && place.make(fresh, bytes) &&
           m_disk.rename(place.folder(), fresh, place.folder(), place.name(),
                         Disk::Rename::replace);
}

bool OtherProgram::remove(const std::string &path)
{
    const Place place(m_disk, path);
    return place && m_disk.unlink(place.folder(), place.name(), FileKind::file);
}

bool OtherProgram::removeAll(const std::string &path)
{
    for (const std::string &name : m_disk.namesAt(path.c_str())) {
        if (!removeAll(path + '/' + name))
            return false;
    }
    const std::optional<FileStatus> status = m_disk.statusAt(path.c_str());
    const Place place(m_disk, path);
    return status && place && m_disk.unlink(place.folder(), place.name(), status->kind);
}

bool OtherProgram::rename(const std::string &path, const std::string &newPath)
{
    const Place place(m_disk, path);
    const Place newPlace(m_disk, newPath);
    return place && newPlace &&
           m_disk.rename(place.folder(), place.name(), newPlace.folder(), newPlace.name(),
                         Disk::Rename::replace);
}

void OtherProgram::syncAll()
{
    const Place root(m_disk, "/");
    static_cast<void>(m_disk.syncFileSystem(root.folder()));
}
