// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppPreferences;
class NoteStore;

/// The screen for a new thought. Its text lives in the store as the capture draft.
class CaptureView final : public QWidget
{
    Q_OBJECT

public:
    CaptureView(NoteStore &store, const AppPreferences &preferences, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The thought is a note on the disk.
    void saved();
};
