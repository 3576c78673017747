// SPDX-License-Identifier: MIT
#pragma once

#include "Reach.h"

#include <cstdint>
#include <span>
#include <string_view>

/// What the program with the windows needs: its own folders, and to read what the toolkit, its
/// plug-ins and themes look for. Of the home folder that is nothing but fonts, themes, the way in
/// which keys compose, and the settings of toolkits and input methods.
///
/// The arguments may name the display. Without folders of its own it may write nothing of the
/// user's; interface tests do so.
[[nodiscard]] Reach windowReach(std::span<char *const> arguments, bool hasOwnFolders);

/// The port at which a display is reached by TCP; 0 for one on this computer. The name is as in
/// DISPLAY (X(7), "Display Names").
[[nodiscard]] std::uint16_t portOfDisplay(std::string_view name);

/// Lets the file with the right to the display be read again and again, also when another has taken
/// its place: a paste connects anew. Changes XAUTHORITY.
void keepDisplayAuthority();
