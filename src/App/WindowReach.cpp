// SPDX-License-Identifier: MIT
#include "WindowReach.h"

#include "HomeFolder.h"
#include "OwnFolders.h"
#include "UserFolders.h"

#include <QByteArray>
#include <QtGlobal>
#include <charconv>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Path = std::filesystem::path;

template <typename... Names>
void addBelow(const Path &folder, Reach::Places &places, Names... names)
{
    (places.push_back(folder / names), ...);
}

/// What lies in each folder for the data of programs: the user's, and those of everyone.
constexpr const char *sharedData[] = {"icons",  "fonts",         "themes",         "mime",
                                      "locale", "color-schemes", "glib-2.0",       "pixmaps",
                                      "X11",    "Kvantum",       "kf6/kiconthemes"};

void addHome(Reach &reach)
{
    addBelow(homeFolder(), reach.readableOutsideHome, ".fonts", ".fonts.conf", ".fonts.conf.d",
             ".fontconfig", ".icons", ".themes", ".gtkrc-2.0", ".XCompose", ".Xdefaults",
             ".ICEauthority", ".Xauthority");
    addBelow(userConfigFolder(), reach.readableOutsideHome, "fontconfig", "dconf", "gtk-2.0",
             "gtk-3.0", "gtk-4.0", "qt6ct", "kdeglobals", "kdedefaults", "kcminputrc", "breezerc",
             "plasmarc", "lxqt", "Kvantum", "Trolltech.conf", "QtProject.conf", "ibus/bus",
             "fcitx/dbus", "xkb");
    for (const char *name : sharedData)
        reach.readableOutsideHome.push_back(userDataFolder() / name);
}

/// Qt may have been put anywhere, and be told by variables where else its plug-ins are.
void addToolkit(Reach &reach)
{
    constexpr const char *kinds[] = {
        "generic",   "iconengines",    "imageformats", "platforminputcontexts",
        "platforms", "platformthemes", "styles",       "xcbglintegrations",
        "accessible"};
    for (const char *kind : kinds)
        reach.addReadableFrom("QT_PLUGIN_PATH", kind);
    Dl_info library{};
    if (::dladdr(reinterpret_cast<const void *>(&qVersion), &library) != 0 && library.dli_fname) {
        const Path folder = Path(library.dli_fname).parent_path();
        reach.readableOutsideHome.push_back(folder);
        reach.readableOutsideHome.push_back(folder.parent_path() / "plugins");
    }
    for (const char *variable :
         {"QT_QPA_PLATFORM_PLUGIN_PATH", "QT_QPA_FONTDIR", "XCURSOR_PATH", "XLOCALEDIR",
          "XCOMPOSEFILE", "FONTCONFIG_PATH", "FONTCONFIG_FILE", "GTK_PATH", "GIO_MODULE_DIR",
          "GIO_EXTRA_MODULES", "GTK_EXE_PREFIX", "GTK_DATA_PREFIX", "GDK_PIXBUF_MODULE_FILE",
          "GTK_IM_MODULE_FILE", "XKB_CONFIG_ROOT"})
        reach.addReadableFrom(variable);
    for (const char *name : sharedData)
        reach.addReadableFrom("XDG_DATA_DIRS", name);
}

void addDesktop(Reach &reach)
{
    reach.readable.insert(reach.readable.end(),
                          {"/etc/fonts", "/etc/X11", "/etc/xdg", "/etc/gtk-2.0", "/etc/gtk-3.0",
                           "/etc/gtk-4.0", "/etc/dconf", "/etc/drirc", "/etc/alternatives",
                           "/var/cache/fontconfig", "/var/lib/flatpak/exports/share/icons"});
    for (const char *variable : {"XAUTHORITY", "ICEAUTHORITY"})
        reach.addReadableFrom(variable);
    if (const auto session = sessionFolder()) {
        reach.readable.push_back(*session / "ICEauthority");
        // Themes for GTK's programs hear of changed settings through a file there.
        reach.writable.push_back(*session / "dconf");
    }
}

bool hasIbus()
{
    return qgetenv("QT_IM_MODULE") == "ibus" || qgetenv("QT_IM_MODULES").contains("ibus");
}

void addDisplay(Reach &reach, std::span<char *const> arguments)
{
    const char *variable = std::getenv("DISPLAY");
    std::string_view name = variable ? variable : "";
    for (std::size_t i = 1; i + 1 < arguments.size(); ++i) {
        const std::string_view argument(arguments[i]);
        if (argument == "-display" || argument == "--display")
            name = arguments[i + 1];
    }
    constexpr std::uint16_t portOfNames = 53;
    if (const std::uint16_t port = portOfDisplay(name); port != 0) {
        reach.ports = {port, portOfNames};
        reach.readable.insert(reach.readable.end(),
                              {"/etc/hosts", "/etc/host.conf", "/etc/gai.conf", "/etc/resolv.conf",
                               "/run/systemd/resolve"});
    }
}

} // namespace

Reach windowReach(std::span<char *const> arguments, bool hasOwnFolders)
{
    Reach reach;
    reach.addSystem();
    addToolkit(reach);
    addDesktop(reach);
    addHome(reach);
    addDisplay(reach, arguments);
    reach.assumesProcesses = hasIbus();
    if (hasOwnFolders) {
        const auto own = ownFolders();
        reach.writable.insert(reach.writable.end(), own.begin(), own.end());
        // Who keeps their settings elsewhere has a link here.
        const Path settings = userConfigFolder() / "Penwick/Penwick.conf";
        std::error_code failure;
        if (std::filesystem::is_regular_file(settings, failure))
            reach.writable.push_back(settings);
    }
    reach.writable.push_back(fontCacheFolder());
    return reach;
}

std::uint16_t portOfDisplay(std::string_view name)
{
    constexpr int firstPort = 6000;
    const std::size_t colon = name.rfind(':');
    if (colon == std::string_view::npos || name.starts_with('/'))
        return 0;
    std::string_view host = name.substr(0, colon);
    if (const std::size_t slash = host.find('/'); slash != std::string_view::npos) {
        const std::string_view protocol = host.substr(0, slash);
        if (protocol == "unix" || protocol == "local")
            return 0;
        host.remove_prefix(slash + 1);
    }
    int number = 0;
    const auto digits = name.substr(colon + 1);
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isLocal = host.empty() || host == "unix";
    constexpr int mostDisplays = 59535;
    return isLocal || number < 0 || number > mostDisplays
               ? std::uint16_t{0}
               : static_cast<std::uint16_t>(firstPort + number);
}

void keepDisplayAuthority()
{
    const char *given = std::getenv("XAUTHORITY");
    const Path path = given && *given != '\0' ? Path(given) : homeFolder() / ".Xauthority";
    // Open as long as the process lives.
    const int file = ::open(path.c_str(), O_PATH | O_CLOEXEC);
    if (file < 0)
        return;
    const std::string name = "/proc/self/fd/" + std::to_string(file);
    struct stat found {};
    const bool isFile = ::fstat(file, &found) == 0 && S_ISREG(found.st_mode);
    if (!isFile || ::access(name.c_str(), R_OK) != 0 ||
        ::setenv("XAUTHORITY", name.c_str(), 1) != 0)
        ::close(file);
}
