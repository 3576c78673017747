// SPDX-License-Identifier: MIT
#pragma once

#include "CompositionWatch.h"

#include <QDeadlineTimer>
#include <QPointer>
#include <QRegion>
#include <QWidget>
#include <functional>

class PanelShadow;

/// A borderless, translucent window that floats above all others on every workspace.
///
/// Two exist: the launcher, which never takes the keyboard, and the editor, which does. Both are
/// made once, then shown and hidden. show() and hide() tell the window manager all it must know.
class FloatingPanel final : public QWidget {
    Q_OBJECT

public:
    enum class Kind { launcher, editor };

    FloatingPanel(Kind kind, QSize contentSize);

    /// Whether it has got the keyboard since it was last shown.
    [[nodiscard]] bool wasActive() const noexcept { return m_wasActive; }

    /// Fills the panel, in place of an earlier content, which is deleted; none leaves it empty.
    void setContent(QWidget *content);

    /// Puts the panel there, in Qt's global coordinates. The editor is also brought back there when
    /// a window manager shows it elsewhere.
    void place(const QRect &frame);

    /// Shows the panel above all windows and gives it the keyboard, as the answer to what the user
    /// just did.
    void makeKey();

    /// Puts a panel that was lost back on the screen. The editor takes the keyboard, too.
    void comeBack();

    /// Cuts the window to the shape of what it shows: without a compositing manager everything
    /// else of it would be black. Where it is not cut, the editor casts a shadow; the launcher
    /// draws its own.
    void setCutOut(bool isCutOut);

    /// Has what lies behind the shape of what it shows blurred.
    void setBlurred(bool isBlurred);

    void setVisible(bool visible) override;

    /// Runs on Escape, once a popup or an input method has had it, and when the window manager is
    /// asked to close the window. None: both do nothing.
    std::function<void()> onEscape;

Q_SIGNALS:
    /// The panel was shown and yet not on the screen: minimised, unmapped, covered, or destroyed.
    /// It is hidden now.
    void lost();

    /// Ctrl+Q, which belongs to the program and not to a screen of it.
    void quitRequested();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void giveUpWindow();
    void updateShape();
    void correctPlace();

    const Kind m_kind;
    const CompositionWatch m_composition;
    QPointer<QWidget> m_content;
    PanelShadow *m_shadow = nullptr;
    QPoint m_place;
    bool m_isBeingShown = false;
    /// While it runs a move is the window manager's.
    QDeadlineTimer m_placing;
    int m_correctionsLeft = 0;
    bool m_isCutOut = false;
    bool m_wasActive = false;
    bool m_isBlurred = false;
    /// In device pixels.
    QRegion m_shape;
};
