// SPDX-License-Identifier: MIT

// The plain reference for what the bubble costs: the smallest Qt Widgets program that shows a
// translucent window of its size, of the same kind of window, with something painted in it.

#include <QApplication>
#include <QPainter>
#include <QWidget>

namespace {

class Disc final : public QWidget {
public:
    Disc()
    {
        setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                       Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus |
                       Qt::NoDropShadowWindowHint);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setGeometry(40, 40, 64, 64);
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::white);
        painter.drawEllipse(5, 5, 54, 54);
    }
};

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QApplication application(argc, argv);
    Disc disc;
    disc.show();
    return QApplication::exec();
}
