// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What the system calls an errno, in English: a text of the program, before translation. Empty for
/// one that no file system is known to answer.
[[nodiscard]] QString systemErrorText(int systemError);
