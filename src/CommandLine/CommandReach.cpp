// SPDX-License-Identifier: MIT
#include "CommandReach.h"

#include <utility>

Confinement confineCommand(Reach::Places writable, Reach::Places readable)
{
    Reach reach;
    reach.writable = std::move(writable);
    reach.readable = std::move(readable);
    reach.addSystem();
    return confine(reach);
}
