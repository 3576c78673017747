// SPDX-License-Identifier: MIT
#include "UserFolders.h"

#include "Directory.h"
#include "HomeFolder.h"
#include "SystemDisk.h"

#include <cstdlib>

namespace {

std::filesystem::path folderIn(const char *variable, const char *usual)
{
    return absolutePathIn(variable).value_or(homeFolder() / usual);
}

} // namespace

std::filesystem::path userDataFolder()
{
    return folderIn("XDG_DATA_HOME", ".local/share");
}

std::filesystem::path userConfigFolder()
{
    return folderIn("XDG_CONFIG_HOME", ".config");
}

std::filesystem::path userStateFolder()
{
    return folderIn("XDG_STATE_HOME", ".local/state");
}

std::filesystem::path userCacheFolder()
{
    return folderIn("XDG_CACHE_HOME", ".cache");
}

std::optional<std::filesystem::path> sessionFolder()
{
    return absolutePathIn("XDG_RUNTIME_DIR");
}

void makeUserFolder(const std::filesystem::path &path)
{
    SystemDisk disk;
    const Result<Directory> folder = Directory::tryToOpenOrMake(disk, path);
    std::error_code ignored;
    if (folder && std::filesystem::is_empty(path, ignored))
        static_cast<void>(folder->tryToSyncPath());
}

std::optional<std::filesystem::path> absolutePathIn(const char *variable)
{
    const char *given = std::getenv(variable);
    if (!given || !std::filesystem::path(given).is_absolute())
        return std::nullopt;
    return given;
}
