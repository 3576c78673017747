// SPDX-License-Identifier: MIT
#pragma once

/// Light or dark.
enum class ColorScheme { light, dark };
