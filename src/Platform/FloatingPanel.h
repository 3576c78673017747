// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry.h"

#include <QWidget>
#include <functional>

/// A borderless, translucent window that floats above all others on every workspace.
///
/// Two exist: the launcher, which never takes the keyboard, and the editor, which does.
class FloatingPanel final : public QWidget
{
    Q_OBJECT

public:
    enum class Kind { launcher, editor };

    FloatingPanel(Kind kind, Size contentSize);

    /// Fills the panel, in place of an earlier content, which is deleted.
    void setContent(QWidget *content);

    /// Runs on Escape, once a popup or an input method has had it. None: Escape does nothing.
    std::function<void()> onEscape;
};
