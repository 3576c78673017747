// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>

class QKeyEvent;

/// What a key means wherever it lies: the keys of the keypad count like all others.
namespace Keys {

/// Return, or the keypad's Enter.
[[nodiscard]] bool isReturn(const QKeyEvent &event);

/// What is held beside the key.
[[nodiscard]] Qt::KeyboardModifiers modifiers(const QKeyEvent &event);

} // namespace Keys
