// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollBar>

/// A narrow vertical scroll bar: a thumb alone, without track and arrows, darker under the pointer,
/// and nothing while everything fits.
class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    explicit SlimScrollBar(QWidget *parent = nullptr);
};
