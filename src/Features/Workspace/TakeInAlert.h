// SPDX-License-Identifier: MIT
#pragma once

#include "AlertCard.h"
#include "TakeInPlan.h"

/// Shows what would become of the copies beside the notes, and asks whether it is to be done.
class TakeInAlert final : public AlertCard {
    Q_OBJECT

public:
    /// Shows itself.
    TakeInAlert(const AppPreferences &preferences, TakeInPlan plan, QWidget *window);

private:
    [[nodiscard]] QString text() const;
    [[nodiscard]] QString textOf(const TakeInPlan::Step &step) const;
    void render();

    const TakeInPlan m_plan;
};
