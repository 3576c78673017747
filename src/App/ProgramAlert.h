// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QMessageBox>

class AppPreferences;

/// An alert of the program's own look: its icon and its font in the language of the preferences, or
/// in English without any. The colours are those of the application's palette.
class ProgramAlert : public QMessageBox {
    Q_OBJECT

public:
    explicit ProgramAlert(const AppPreferences *preferences);

    /// Shows the alert above all windows of the program, with the keyboard, and waits for the
    /// answer.
    void ask();

    /// Drawn, since a picture that is installed is not there before that.
    [[nodiscard]] static QIcon icon();
};
