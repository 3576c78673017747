// SPDX-License-Identifier: MIT
#pragma once

/// What the program tells the shell. Scripts rely on the numbers; the manual page lists them.
enum class ExitStatus {
    done = 0,
    wrong = 1, ///< "check" found something.
    usage = 2,
    blank = 3,
    notUtf8 = 4,
    limits = 5,
    folder = 6, ///< The notes folder is refused.
    recoveryCopy = 7,
    diskFull = 8,
    disk = 9,
    inUse = 10,      ///< Another program has the notes and cannot be asked.
    silent = 11,     ///< The window did not answer in time.
    unknown = 12,    ///< No note has that identifier.
    ambiguous = 13,  ///< More than one has.
    file = 14,       ///< A file or folder that was named, or the output, cannot be used.
    unanswered = 15, ///< Nothing was taken in, since nobody said yes.
};
