// SPDX-License-Identifier: MIT
#include "Confinement.h"
#include "HomeFolder.h"
#include "OwnFolders.h"
#include "PenwickApp.h"
#include "ProcessStart.h"
#include "WindowReach.h"

#include "SessionBus.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto help =
    "Usage: quillmark [option]…\n"
    "\n"
    "Keeps a bubble above all windows; a click on it opens an editor for a quick note.\n"
    "Started a second time, it opens the editor of the one that runs.\n"
    "\n"
    "  --show-editor        opens the editor at once\n"
    "  --show-notes         opens the editor with the list of notes\n"
    "  --autostart          leaves one that runs already as it is; for the start of a session\n"
    "  --ui-testing         keeps notes in memory and nothing else, in English and light\n"
    "  --language=zh-Hans   with --ui-testing: in Chinese\n"
    "  --appearance=dark    with --ui-testing: dark\n"
    "  --version, -v        prints the version and ends\n"
    "  --help, -h           prints this and ends\n"
    "\n"
    "The options of Qt are known, too. Others are told on the standard error and passed over.\n";

/// Settings, fonts and what else the toolkit keeps for the user are found by this variable alone.
void doWithoutMissingHome()
{
    const std::string home = homeFolder();
    if (::setenv("HOME", home.c_str(), 1) != 0)
        std::fputs("Quillmark cannot set HOME.\n", stderr);
}

/// A file that may not grow and a reader that has gone away are errors of a call (EFBIG, EPIPE) and
/// no reason to end.
void takeSignalsAsErrors()
{
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

/// Whether it may leave something behind: not interface tests, nor a host of other code.
bool isForTheUser(std::span<char *const> arguments)
{
    const auto isTest = [](const char *argument) {
        return std::string_view(argument) == "--ui-testing";
    };
    return std::ranges::none_of(arguments, isTest) && qgetenv("XCODE_RUNNING_FOR_PREVIEWS") != "1";
}

Confinement enterRoom(std::span<char *const> arguments, bool hasOwnFolders)
{
    keepDisplayAuthority();
    return confine(windowReach(arguments, hasOwnFolders));
}

/// And what the kernel keeps the program from, which is tried by doing it.
void printVersion(std::span<char *const> arguments)
{
    const Confinement confinement = enterRoom(arguments, true);
    std::printf("Quillmark " QUILLMARK_VERSION "\n%s\n", confinement.description().c_str());
}

} // namespace

int main(int argc, char **argv)
{
    occupyStandardFiles();
    takeSignalsAsErrors();
    const std::span<char *const> arguments(argv, static_cast<std::size_t>(argc));

    // Answered without a display.
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument(argv[i]);
        if (argument == "--help" || argument == "-h") {
            std::fputs(help, stdout);
            return EXIT_SUCCESS;
        }
        if (argument == "--version" || argument == "-v") {
            printVersion(arguments);
            return EXIT_SUCCESS;
        }
    }

    // Only X11, in a Wayland session through XWayland, lets a window stay on top at its place.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    doWithoutMissingHome();
    leaveNoCoreFile();
    const bool hasOwnFolders = isForTheUser(arguments);
    if (hasOwnFolders)
        makeOwnFolders();
    // From here on: the bus is the first that others write to the program.
    enterRoom(arguments, hasOwnFolders);
    doWithoutSilentSessionBus();

    PenwickApp app(argc, argv);
    return app.run();
}
