// SPDX-License-Identifier: MIT
#pragma once

#include <QMargins>
#include <QObject>
#include <QWidget>
#include <memory>

class QPainter;
class QRasterWindow;
class ShadowPicture;

/// The soft shadow around a panel while it is on the screen.
///
/// The compositing manager draws it where it has a way of its own. Elsewhere it is a window right
/// below the panel, which is empty where the panel is, lets clicks through and is not among what
/// assistive tools see.
class PanelShadow final : public QObject {
    Q_OBJECT

public:
    /// The panel is the parent.
    explicit PanelShadow(QWidget &panel);
    ~PanelShadow() override;

    /// Whether there is a compositing manager: without one it would be a black frame.
    void setComposited(bool isComposited);

    /// How far it reaches beyond each side of the panel.
    [[nodiscard]] static QMargins margins();

    /// Draws the shadow of a panel that lies there.
    static void paint(QPainter &painter, const QRect &panel);

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    /// Shows or hides it, as the panel is now.
    void follow();
    void handOverPicture();

    QWidget &m_panel;
    std::unique_ptr<QRasterWindow> m_window;
    std::unique_ptr<ShadowPicture> m_picture;
    /// For which scale and which window the compositing manager has its picture.
    double m_pictureScale = 0;
    WId m_pictureOwner = 0;
    bool m_isComposited = true;
};
