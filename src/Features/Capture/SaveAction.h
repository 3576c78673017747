// SPDX-License-Identifier: MIT
#pragma once

class QAction;
class QWidget;

/// The keys that save, wherever in the view's window the keyboard is: Ctrl+Return and
/// Super+Return, also with the Enter key of the keypad. Holding them saves once.
[[nodiscard]] QAction *makeSaveAction(QWidget *view);
