// SPDX-License-Identifier: MIT
#pragma once

class QUrl;

/// Shows a folder in the user's file browser, through the session bus: first
/// org.freedesktop.FileManager1, then the portal. Does not wait for the answer.
void openInFileBrowser(const QUrl &folder);
