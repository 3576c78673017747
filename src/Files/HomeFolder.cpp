// SPDX-License-Identifier: MIT
#include "HomeFolder.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace {

std::filesystem::path homeInUserDatabase()
{
    constexpr std::size_t largestEntry = 64UL * 1024;
    std::vector<char> buffer(largestEntry);
    passwd entry{};
    passwd *found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
        !found->pw_dir)
        return {};
    return found->pw_dir;
}

} // namespace

std::filesystem::path homeFolder()
{
    const char *given = std::getenv("HOME");
    if (given && std::filesystem::path(given).is_absolute())
        return given;
    const std::filesystem::path home = homeInUserDatabase();
    return home.is_absolute() ? home : std::filesystem::path("/");
}
