// SPDX-License-Identifier: MIT
#pragma once

#include "LauncherInteraction.h"

#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

class AppPreferences;
struct DroppedText;
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

    /// Shows for a moment that what was dropped has become a note.
    void showKept();

    /// Says beside the launcher why it has not; already translated.
    void showRefusal(const QString &sentence);

    /// The symbol that is shown now.
    [[nodiscard]] QString symbol() const;

    /// Ends a drag that is still going on, where it is.
    void endDrag();

Q_SIGNALS:
    /// The pointer came over the launcher, perhaps to click.
    void approached();
    void openRequested();
    void moved(LauncherInteraction::Translation translation, bool ended);
    void quitRequested();
    void dropped(const DroppedText &dropped);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setHovered(bool isHovered);
    void setEmphasis(double emphasis);
    [[nodiscard]] bool reducesMotion() const;
    void render();

    const AppPreferences &m_preferences;
    LauncherHitView *const m_hitView;
    QVariantAnimation m_hover;
    /// From 0, the pointer is elsewhere, to 1, it is over the launcher.
    double m_emphasis = 0;
    QTimer m_keptSign;
};
