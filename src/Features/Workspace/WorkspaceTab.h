// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <array>

/// The two tabs, in the order of their buttons.
enum class WorkspaceTab { capture, library };

inline constexpr std::array allWorkspaceTabs{WorkspaceTab::capture, WorkspaceTab::library};

/// "Capture", "Notes": also the untranslated title.
[[nodiscard]] QString rawValue(WorkspaceTab tab);

/// "captureTab", "libraryTab": the object name of the tab's button.
[[nodiscard]] QString identifier(WorkspaceTab tab);
