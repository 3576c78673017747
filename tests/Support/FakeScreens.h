// SPDX-License-Identifier: MIT
#pragma once

#include "Screens.h"

/// Screens that a test puts together. The first one is the main one; Qt's coordinates hang from
/// its top, as on a real display.
class FakeScreens final : public Screens {
public:
    using Screens::Screens;

    void set(const QList<Screen> &screens)
    {
        m_screens = screens;
        Q_EMIT changed();
    }

    [[nodiscard]] QList<Screen> all() const override { return m_screens; }
    [[nodiscard]] std::optional<Screen> main() const override
    {
        return m_screens.isEmpty() ? std::nullopt : std::optional(m_screens.first());
    }

    [[nodiscard]] QString arrangement() const override
    {
        QString result;
        for (const Screen &screen : m_screens)
            result +=
                QString::number(screen.frame.x) + u' ' + QString::number(screen.frame.width) + u';';
        return result;
    }

    [[nodiscard]] Rect fromQt(const QRect &rect) const override
    {
        return {double(rect.x()), top() - rect.y() - rect.height(), double(rect.width()),
                double(rect.height())};
    }
    [[nodiscard]] Point fromQt(QPointF point) const override
    {
        return {point.x(), top() - point.y()};
    }
    [[nodiscard]] QRect toQt(const Rect &rect) const override
    {
        return {qRound(rect.x), qRound(top() - rect.maxY()), qRound(rect.width),
                qRound(rect.height)};
    }

private:
    [[nodiscard]] double top() const
    {
        return m_screens.isEmpty() ? 0 : m_screens.first().frame.maxY();
    }

    QList<Screen> m_screens;
};
