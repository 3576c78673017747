// SPDX-License-Identifier: MIT
#pragma once

#include "AppAppearance.h"
#include "AppLanguage.h"

#include <QProcessEnvironment>
#include <QStringList>
#include <optional>

/// What one start of the program is to do, read from its arguments and its environment.
///
/// Arguments count only as a whole; unknown ones change nothing.
struct LaunchOptions {
    enum class Mode {
        /// With the user's notes and preferences.
        normal,
        /// "--ui-testing": with notes in memory and fixed preferences, leaving nothing behind.
        interfaceTest,
        /// Someone else's code runs in this process, previews or unit tests: builds nothing.
        hostOnly,
    };

    Mode mode = Mode::normal;

    /// Set only in interface tests ("--language=zh-Hans", "--appearance=dark"), which never follow
    /// the system.
    std::optional<AppLanguage> language;
    std::optional<AppAppearance> appearance;

    /// "--show-editor": opens the editor at once, in every mode that builds something.
    bool showsEditor = false;

    /// "--show-notes": the same, with the list of notes.
    bool showsNotes = false;

    /// "--autostart": the session started the program by itself, so that one which runs already is
    /// left as it is.
    bool isAutostart = false;

    /// "--started-by-bus": the session bus started the program for a call, so that to be activated
    /// by that call is this start and not a second one.
    bool isStartedByBus = false;

    /// The arguments that mean nothing here, in their order.
    QStringList unknown;

    /// XCODE_RUNNING_FOR_PREVIEWS=1 in the environment says that the program hosts previews.
    [[nodiscard]] static LaunchOptions
    from(const QStringList &arguments, const QProcessEnvironment &environment, bool hostsUnitTests);

    [[nodiscard]] static LaunchOptions ofThisProcess();

    friend bool operator==(const LaunchOptions &, const LaunchOptions &) = default;
};

/// True when Qt Test is loaded into this process.
[[nodiscard]] bool hostsUnitTests();
