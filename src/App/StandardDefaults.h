// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>
#include <memory>

/// The user's settings, "Penwick/Penwick.conf" in the folder of settings.
///
/// Where a pipe, a device or a folder has that name, they are empty ones that keep nothing: to read
/// a pipe would be to wait for whoever writes into it.
[[nodiscard]] std::unique_ptr<QSettings> standardDefaults();
