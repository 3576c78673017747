// SPDX-License-Identifier: MIT
#pragma once

#include "Confinement.h"

/// Confines the command line for good to what one command was given: files and folders that are
/// there. To be called before a thread exists and before what others wrote is looked at.
Confinement confineCommand(Reach::Places writable, Reach::Places readable = {});
