// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

/// What a process may reach once it is confined; all else is refused. A plain value.
///
/// Places are files, and folders with all that is below them. What is not there is passed over: a
/// right belongs to the file or folder itself, and what takes its place later does not inherit it.
struct Reach {
    using Places = std::vector<std::filesystem::path>;

    Places readable;

    /// To be read as well, but for those in which the home folder lies, whatever links lead there:
    /// one of them would open all of it. For what others may point elsewhere.
    Places readableOutsideHome;

    /// To be read and written, under the same condition.
    Places writable;

    /// To which a connection may be made by TCP. With none there is no network at all.
    std::vector<std::uint16_t> ports;

    /// Whether any other process is there is answered with yes, without anybody being asked, and
    /// else with EPERM. The toolkit asks so (signal 0) after the daemon of ibus, and does without
    /// the input method when it may not ask; a daemon that is gone it misses when it connects.
    bool assumesProcesses = false;

    /// Adds what the loader, the C library and the libraries of every program look for outside the
    /// home folder: libraries, languages, time zones, the names of users. And the program's own
    /// texts, which lie beside its folder.
    void addSystem();

    /// Adds what a variable of the environment names, absolute paths with colons between them.
    /// Where a name is given, only what is called so in each of the paths.
    void addReadableFrom(const char *variable, const char *name = "");
};
