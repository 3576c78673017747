// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppPreferences;

/// The round button with the plus that fills the launcher. Draws only; the hit view over it acts.
class LauncherView final : public QWidget
{
    Q_OBJECT

public:
    explicit LauncherView(AppPreferences &preferences, QWidget *parent = nullptr);
};
