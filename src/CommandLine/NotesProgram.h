// SPDX-License-Identifier: MIT
#pragma once

#include "ExitStatus.h"

/// The whole program: does what its arguments say, and answers what the shell is told.
[[nodiscard]] ExitStatus runNotesProgram(int argumentCount, char **arguments);
