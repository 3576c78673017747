// SPDX-License-Identifier: MIT
#include "Reach.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

void Reach::addSystem()
{
    writable.emplace_back("/dev/null");
    readable.insert(readable.end(),
                    {"/usr", "/lib", "/lib64", "/lib32",
                     // Systems that keep no libraries there.
                     "/nix/store", "/gnu/store", "/app", "/run/host/fonts", "/run/host/share",
                     "/etc/ld.so.cache", "/etc/ld.so.preload", "/etc/localtime", "/etc/timezone",
                     "/etc/locale.alias", "/etc/nsswitch.conf", "/etc/passwd", "/etc/group",
                     "/etc/machine-id", "/var/lib/dbus/machine-id", "/var/lib/sss/mc",
                     "/run/systemd/userdb",
                     // What the C library asks the kernel.
                     "/dev/urandom", "/dev/random", "/dev/zero", "/proc/self", "/proc/sys/kernel",
                     "/proc/sys/vm/overcommit_memory", "/proc/filesystems", "/proc/meminfo",
                     "/proc/cpuinfo", "/proc/stat", "/sys/devices/system/cpu"});
    std::error_code failure;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
    readableOutsideHome.push_back(program.parent_path() / "../share/quillmark");
    addReadableFrom("LD_LIBRARY_PATH");
    addReadableFrom("LOCPATH");
    addReadableFrom("TZDIR");
}

void Reach::addReadableFrom(const char *variable, const char *name)
{
    const char *given = std::getenv(variable);
    std::string_view rest = given ? given : "";
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        const std::filesystem::path place(rest.substr(0, end));
        if (place.is_absolute())
            readableOutsideHome.push_back(*name != '\0' ? place / name : place);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}
