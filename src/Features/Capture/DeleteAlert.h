// SPDX-License-Identifier: MIT
#pragma once

#include "AlertCard.h"

/// Asks whether a note is to be deleted.
class DeleteAlert final : public AlertCard {
    Q_OBJECT

public:
    /// Shows itself.
    DeleteAlert(const AppPreferences &preferences, QWidget *window);

private:
    void render();
};
