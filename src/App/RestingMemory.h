// SPDX-License-Identifier: MIT
#pragma once

/// Gives back what only the start needed: memory that is free again, and the mappings of the
/// program's own code, which the kernel maps anew, from its cache of the file, where it runs on.
void giveMemoryBack();
