// SPDX-License-Identifier: MIT
#include "PlainStorage.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

int require(int result, const char *what)
{
    if (result < 0) {
        std::perror(what);
        std::exit(2);
    }
    return result;
}

int openFolder(int parent, const char *name)
{
    return require(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC), name);
}

/// The names of the files, which are all that the folder holds.
std::vector<std::string> list(int folder)
{
    std::vector<std::string> names;
    DIR *stream = ::fdopendir(require(::dup(folder), "dup"));
    ::rewinddir(stream);
    while (const dirent *entry = ::readdir(stream)) {
        if (entry->d_type == DT_REG)
            names.emplace_back(entry->d_name);
    }
    ::closedir(stream);
    return names;
}

std::size_t readAll(int folder, const std::vector<std::string> &names)
{
    static std::vector<char> buffer(1024 * 1024);
    std::size_t size = 0;
    for (const std::string &name : names) {
        const int file = require(::openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC), "open");
        for (ssize_t count = 1; count > 0;) {
            count = ::read(file, buffer.data(), buffer.size());
            size += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        ::close(file);
    }
    return size;
}

std::size_t lookAtAll(int folder, const std::vector<std::string> &names)
{
    std::size_t size = 0;
    for (const std::string &name : names) {
        struct stat status;
        require(::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW), "stat");
        size += static_cast<std::size_t>(status.st_size);
    }
    return size;
}

constexpr const char *sections[] = {"Notes", "Drafts"};

} // namespace

std::size_t PlainStorage::look(const std::string &dataFolder)
{
    const int data = openFolder(AT_FDCWD, dataFolder.c_str());
    const int live = openFolder(data, "Markdown");
    std::size_t size = lookAtAll(live, list(live));
    for (const char *section : sections) {
        const int folder = openFolder(live, section);
        size += lookAtAll(folder, list(folder));
        ::close(folder);
    }
    ::close(live);
    ::close(data);
    return size;
}

void PlainStorage::linkAndWrite(const std::string &dataFolder, const std::string &noteName,
                                const std::string &bytes)
{
    const int data = openFolder(AT_FDCWD, dataFolder.c_str());
    const int live = openFolder(data, "Markdown");
    require(::mkdirat(data, ".stage", 0700), "mkdir");
    const int stage = openFolder(data, ".stage");
    require(::linkat(live, ".format", stage, ".format", 0), "link");

    for (const char *section : sections) {
        const int from = openFolder(live, section);
        require(::mkdirat(stage, section, 0700), "mkdir");
        const int into = openFolder(stage, section);
        const std::vector<std::string> names = list(from);
        static_cast<void>(lookAtAll(from, names));
        for (const std::string &name : names) {
            if (name != noteName)
                require(::linkat(from, name.c_str(), into, name.c_str(), 0), "link");
        }
        if (section == sections[0]) {
            const int file = require(
                ::openat(into, noteName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600),
                "create");
            if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
                std::exit(2);
            require(::fsync(file), "fsync");
            ::close(file);
        }
        require(::fsync(into), "fsync");
        ::close(into);
        ::close(from);
    }
    require(::fsync(stage), "fsync");
    require(::fsync(data), "fsync");
    ::close(stage);
    ::close(live);
    ::close(data);
}

void PlainStorage::removeStage(const std::string &dataFolder)
{
    std::filesystem::remove_all(dataFolder + "/.stage");
}

std::size_t PlainStorage::load(const std::string &dataFolder)
{
    const int data = openFolder(AT_FDCWD, dataFolder.c_str());
    const int live = openFolder(data, "Markdown");
    std::size_t size = readAll(live, list(live));
    for (const char *section : sections) {
        const int folder = openFolder(live, section);
        size += readAll(folder, list(folder));
        ::close(folder);
    }
    ::close(live);
    ::close(data);
    return size;
}
