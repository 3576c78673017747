// SPDX-License-Identifier: MIT
#pragma once

#include "GlassSurface.h"

class AppPreferences;
class NoteStore;
class QUrl;

/// The content of the editor panel: header, error banner, one of three screens, footer.
class NoteWorkspaceView final : public GlassSurface
{
    Q_OBJECT

public:
    NoteWorkspaceView(NoteStore &store, AppPreferences &preferences, QWidget *parent = nullptr);

Q_SIGNALS:
    /// By the button, or because the thought is saved.
    void collapseRequested();
    void showFolderRequested(const QUrl &folder);
};
