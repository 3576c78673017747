// SPDX-License-Identifier: MIT
#pragma once

class QSettings;

/// Whether settings can be written now: waits for the lock beside their file, for 0.6 seconds at
/// most, and removes one that is older than 0.4.
///
/// QSettings itself waits half a minute for what a program has left behind that was killed, and for
/// good for what it cannot remove. It holds its lock for as long as it takes to write a small file.
[[nodiscard]] bool isLockFree(const QSettings &settings);
