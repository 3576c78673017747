// SPDX-License-Identifier: MIT
#pragma once

#include "LauncherInteraction.h"

#include <QVariantAnimation>
#include <QWidget>

class AppPreferences;
class LauncherHitView;
class Screens;

/// The round button with the plus that fills the launcher: it grows a little and takes the accent
/// colour under the pointer. Draws only; the LauncherHitView over it acts.
class LauncherView final : public QWidget {
    Q_OBJECT

public:
    LauncherView(const AppPreferences &preferences, const Screens &screens,
                 QWidget *parent = nullptr);

    /// What is drawn at this moment: the disc in the middle of the view.
    [[nodiscard]] QRectF disc() const;

Q_SIGNALS:
    void openRequested();
    void moved(LauncherInteraction::Translation translation, bool ended);
    void quitRequested();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setHovered(bool isHovered);
    [[nodiscard]] bool reducesMotion() const;
    void render();

    const AppPreferences &m_preferences;
    LauncherHitView *const m_hitView;
    /// From not hovered, 0, to hovered, 1.
    QVariantAnimation m_hover;
};
