// SPDX-License-Identifier: MIT
#pragma once

class QUrl;

/// Shows a folder in the user's file browser, through the session bus: first
/// org.freedesktop.FileManager1, then the portal. Does not wait for the answer.
void openInFileBrowser(const QUrl &folder);

/// The same for one file or folder, which is chosen in the folder that it lies in.
void showInFileBrowser(const QUrl &file);
