// SPDX-License-Identifier: MIT
#pragma once

#include "ApplicationFocus.h"

#include <QList>

/// A desktop whose frontmost program a test chooses, and which remembers who was activated.
class FakeApplicationFocus final : public ApplicationFocus {
public:
    [[nodiscard]] std::optional<RunningApplication> frontmost() const override { return current; }
    [[nodiscard]] std::optional<RunningApplication> lastWorkedIn() const override { return last; }
    void activate(const RunningApplication &application) override { activated.append(application); }

    std::optional<RunningApplication> current;
    std::optional<RunningApplication> last;
    QList<RunningApplication> activated;
};
