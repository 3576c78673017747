// SPDX-License-Identifier: MIT
#pragma once

class QSettings;

/// To be called before something is written to settings. Waits for the lock beside their file, for 0.6
/// seconds at most; one that is older than 0.4 is nobody's any more, and is removed.
///
/// QSettings itself waits half a minute for what a program has left behind that was killed. It
/// holds its lock for as long as it takes to write a small file.
void waitForSettingsLock(const QSettings &settings);
