// SPDX-License-Identifier: MIT
#include "SettingsLock.h"

#include <QLockFile>
#include <QSettings>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int oldest = 400;
constexpr int longestWait = 600;

} // namespace

void waitForSettingsLock(const QSettings &settings)
{
    QLockFile lock(settings.fileName() + ".lock"_L1);
    lock.setStaleLockTime(oldest);
    // Held by nobody when it goes: QSettings takes it next.
    [[maybe_unused]] const bool isFree = lock.tryLock(longestWait);
}
