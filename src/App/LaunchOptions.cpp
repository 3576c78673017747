// SPDX-License-Identifier: MIT
#include "LaunchOptions.h"

#include <QCoreApplication>
#include <dlfcn.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The toolkit has taken its own out before.
const QStringList knownArguments{u"--show-editor"_s,      u"--started-by-bus"_s,  u"--ui-testing"_s,
                                 u"--language=zh-Hans"_s, u"--appearance=dark"_s, u"-session"_s,
                                 u"--show-notes"_s,       u"--autostart"_s};

} // namespace

LaunchOptions LaunchOptions::from(const QStringList &arguments,
                                  const QProcessEnvironment &environment, bool hostsUnitTests)
{
    LaunchOptions options;
    options.showsEditor = arguments.contains("--show-editor"_L1);
    options.showsNotes = arguments.contains("--show-notes"_L1);
    options.isAutostart = arguments.contains("--autostart"_L1);
    options.isStartedByBus = arguments.contains("--started-by-bus"_L1);
    for (const QString &argument : arguments.mid(1)) {
        if (!knownArguments.contains(argument))
            options.unknown.append(argument);
    }
    if (hostsUnitTests || environment.value("XCODE_RUNNING_FOR_PREVIEWS"_L1) == "1"_L1) {
        options.mode = Mode::hostOnly;
    } else if (arguments.contains("--ui-testing"_L1)) {
        options.mode = Mode::interfaceTest;
        options.language = arguments.contains("--language=zh-Hans"_L1) ? AppLanguage::chinese
                                                                       : AppLanguage::english;
        options.appearance =
            arguments.contains("--appearance=dark"_L1) ? AppAppearance::dark : AppAppearance::light;
    }
    return options;
}

LaunchOptions LaunchOptions::ofThisProcess()
{
    return from(QCoreApplication::arguments(), QProcessEnvironment::systemEnvironment(),
                hostsUnitTests());
}

bool hostsUnitTests()
{
    void *const library = dlopen("libQt6Test.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return false;
    dlclose(library);
    return true;
}
