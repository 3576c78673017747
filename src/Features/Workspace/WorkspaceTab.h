// SPDX-License-Identifier: MIT
#pragma once

#include <array>

/// The two tabs, in the order of their buttons.
enum class WorkspaceTab { capture, library };

inline constexpr std::array allWorkspaceTabs{WorkspaceTab::capture, WorkspaceTab::library};
