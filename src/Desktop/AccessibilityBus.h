// SPDX-License-Identifier: MIT
#pragma once

/// Has this process do without assistive technology when what carries it is there and does not
/// answer within 0.8 seconds: says so on the standard error then. To be called when the application
/// object is there, and before its first window.
///
/// Qt asks for the bus of assistive technology, greets it, and asks the registry there who listens.
/// It waits 25 seconds for each answer, before the first window is on screen.
void doWithoutSilentAccessibility();
