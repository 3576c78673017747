// SPDX-License-Identifier: MIT
#pragma once

#include "NoteTheme.h"

#include <QWidget>

/// A hairline across its width in the primary style at 6 %.
class Divider final : public QWidget {
    Q_OBJECT

public:
    explicit Divider(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

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

/// A rounded rectangle behind its children, filled with a tone at an opacity: the error banner,
/// the search field. Its corners are continuous.
class TintedFrame final : public QWidget {
    Q_OBJECT

public:
    TintedFrame(Tone tone, double opacity, double radius, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tone m_tone;
    double m_opacity;
    double m_radius;
};
