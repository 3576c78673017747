// SPDX-License-Identifier: MIT
#pragma once

/// What every program with the notes does first, before it opens a file.

/// Where input, output or errors are closed, the next file that is opened would take their place: a
/// message would then be written into a note. Opens them on /dev/null.
void occupyStandardFiles();

/// A crash must not leave a copy of the notes behind, neither in a core file nor with a crash
/// reporter.
void leaveNoCoreFile();
