// SPDX-License-Identifier: MIT
#include "FocusRing.h"

#include "Metrics.h"
#include "NoteTheme.h"

#include <QFocusEvent>
#include <QPainter>
#include <QWidget>

namespace {

class FocusWatch final : public QObject {
public:
    explicit FocusWatch(QWidget *view)
        : QObject(view)
    {
        view->installEventFilter(this);
    }

    [[nodiscard]] static const FocusWatch *of(const QWidget *view)
    {
        for (const QObject *child : view->children()) {
            if (const auto *watch = dynamic_cast<const FocusWatch *>(child))
                return watch;
        }
        return nullptr;
    }

    [[nodiscard]] bool isByKeyboard() const noexcept { return m_isByKeyboard; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn)
            note(static_cast<QFocusEvent *>(event)->reason());
        return false;
    }

private:
    void note(Qt::FocusReason reason)
    {
        switch (reason) {
        case Qt::TabFocusReason:
        case Qt::BacktabFocusReason:
        case Qt::ShortcutFocusReason:
            m_isByKeyboard = true;
            break;
        case Qt::MouseFocusReason:
        case Qt::OtherFocusReason:
        case Qt::NoFocusReason:
            m_isByKeyboard = false;
            break;
        case Qt::ActiveWindowFocusReason:
        case Qt::PopupFocusReason:
        case Qt::MenuBarFocusReason:
            // The focus comes back to where it was.
            break;
        }
    }

    bool m_isByKeyboard = false;
};

} // namespace

void FocusRing::watch(QWidget *view)
{
    new FocusWatch(view);
}

bool FocusRing::isWanted(const QWidget *view)
{
    if (!view->hasFocus())
        return false;
    const FocusWatch *watch = FocusWatch::of(view);
    return watch ? watch->isByKeyboard()
                 : view->window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void FocusRing::paint(QPainter &painter, const QWidget *view, const QRectF &rect, double radius,
                      const QColor &color)
{
    if (!isWanted(view))
        return;
    constexpr double inset = Metrics::focusRingWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color.isValid() ? color : NoteTheme::color(view->palette(), Tone::accent),
                        Metrics::focusRingWidth));
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
    painter.restore();
}
