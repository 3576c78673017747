// SPDX-License-Identifier: MIT
#pragma once

namespace AccessibleFocus {

/// From now on assistive tools are told once of what gets the keyboard, and only of that: of the
/// row and not of the list around it, not again of what they know to have it. Qt tells of each
/// step. Of texts they are told while these are shown.
void tellOnce();

} // namespace AccessibleFocus
