// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>
#include <filesystem>

/// The address of a file or folder, and its path again: of any bytes, while QUrl's own conversions
/// are for names that are texts.
[[nodiscard]] QUrl fileUrl(const std::filesystem::path &path);
[[nodiscard]] std::filesystem::path localPath(const QUrl &url);

/// As much of a path as a person can make use of: its beginning, and the name at its end.
[[nodiscard]] QString shownPath(const std::filesystem::path &path);
