// SPDX-License-Identifier: MIT
#include "SettingsLock.h"

#include <QLockFile>
#include <QSettings>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int oldest = 400;
constexpr int longestWait = 600;

} // namespace

bool isLockFree(const QSettings &settings)
{
    QLockFile lock(settings.fileName() + ".lock"_L1);
    lock.setStaleLockTime(oldest);
    // Where there is no folder yet, or nothing may be written, QSettings does not wait either.
    return lock.tryLock(longestWait) || lock.error() != QLockFile::LockFailedError;
}
