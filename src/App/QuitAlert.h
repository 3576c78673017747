// SPDX-License-Identifier: MIT
#pragma once

#include "ProgramAlert.h"

class QPushButton;

/// Asks, when the last write failed, whether to quit all the same and lose what was not written.
class QuitAlert final : public ProgramAlert {
    Q_OBJECT

public:
    /// In the language of the preferences; in English without any.
    explicit QuitAlert(const AppPreferences *preferences);

    /// Waits for the answer. True for "Quit anyway"; everything else, Escape and closing the
    /// window too, means to return.
    [[nodiscard]] bool confirmsQuitting();

    /// Shows an alert and waits for its answer.
    [[nodiscard]] static bool isConfirmed(const AppPreferences *preferences);

private:
    QPushButton *m_quitAnyway;
};
