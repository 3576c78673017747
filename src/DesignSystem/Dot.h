// SPDX-License-Identifier: MIT
#pragma once

#include "NoteTheme.h"

#include <QWidget>

/// A small filled circle.
class Dot final : public QWidget {
    Q_OBJECT

public:
    Dot(int diameter, Tone tone, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tone m_tone;
};
