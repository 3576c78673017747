// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QLineEdit>

/// A line of text to type in, with no frame and no background of its own; the prompt is in the
/// tertiary style. Put it on a TintedFrame.
class PlainTextField : public QLineEdit {
    Q_OBJECT

public:
    explicit PlainTextField(const TextStyle &style, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    TextStyle m_style;
};
