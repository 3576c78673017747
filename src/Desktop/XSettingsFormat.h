// SPDX-License-Identifier: MIT
#pragma once

#include "ToolkitSettings.h"

#include <QByteArrayView>

/// The bytes that a desktop's settings manager leaves on the X server, as freedesktop's "XSettings"
/// specification 0.5 gives them: a head with the order of bytes and how many settings there are,
/// then each with its type, its name and its value.
namespace XSettingsFormat {

/// Of bytes that are cut off or make no sense, what was whole before that place.
[[nodiscard]] ToolkitSettings reading(QByteArrayView bytes);

} // namespace XSettingsFormat
