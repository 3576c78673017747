// SPDX-License-Identifier: MIT
#include "NotesProgram.h"
#include "ProcessStart.h"

#include <csignal>

int main(int argc, char **argv)
{
    occupyStandardFiles();
    leaveNoCoreFile();
    // A file that may not grow is an error of a call (EFBIG).
    std::signal(SIGXFSZ, SIG_IGN);
    return static_cast<int>(runNotesProgram(argc, argv));
}
