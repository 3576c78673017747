// SPDX-License-Identifier: MIT
#include "Confinement.h"

#include "LandlockRules.h"
#include "SystemCallFilter.h"

#include <cstdlib>
#include <string_view>
#include <sys/prctl.h>

std::string Confinement::description() const
{
    if (isWaived)
        return "Not confined: QUILLMARK_UNCONFINED is set.";
    std::string text = "Confined: ";
    text += landlock > 0 ? "files by Landlock " + std::to_string(landlock)
                         : "no files (this kernel has no Landlock that will do)";
    text += hasFilter ? ", system calls by seccomp" : ", no system calls (there is no seccomp)";
    if (hasFilter || landlock > 0)
        text += hasNetwork ? "; network for the display alone." : "; no network.";
    return text;
}

Confinement confine(const Reach &reach)
{
    const char *waived = std::getenv("QUILLMARK_UNCONFINED");
    if (waived && std::string_view(waived) == "1")
        return {.isWaived = true};
    return confine(reach, LandlockRules::usableAbi());
}

Confinement confine(const Reach &reach, int landlockAbi)
{
    Confinement done;
    done.hasNetwork = !reach.ports.empty();
    // Both ask for it, and a program that gives more rights to who starts it is none to start.
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    if (landlockAbi > 0 && LandlockRules::enforce(reach, landlockAbi))
        done.landlock = landlockAbi;
    done.hasFilter = installSystemCallFilter(
        {.refusesTruncation = done.landlock < LandlockRules::abiOfTruncation,
         .refusesSignals = done.landlock < LandlockRules::abiOfSignals,
         .assumesProcesses = reach.assumesProcesses,
         .allowsInternet = done.hasNetwork});
    return done;
}
