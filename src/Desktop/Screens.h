// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry.h"

#include <QAbstractNativeEventFilter>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QString>
#include <optional>

class QScreen;

/// One screen: all of it, and what panels and docks leave free.
struct Screen {
    Rect frame;
    Rect visibleFrame;

    friend bool operator==(const Screen &, const Screen &) = default;
};

/// The arrangement of screens. An interface, so that placement is tested without a display.
class Screens : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// In the platform's order.
    [[nodiscard]] virtual QList<Screen> all() const = 0;

    /// The user's primary screen; nothing while no screen is connected.
    [[nodiscard]] virtual std::optional<Screen> main() const = 0;

    /// The same for the same screens at the same places, at the same scale; whatever panels leave
    /// free of them.
    [[nodiscard]] virtual QString arrangement() const = 0;

    /// Between y-up points and Qt's y-down global coordinates.
    [[nodiscard]] virtual Rect fromQt(const QRect &rect) const = 0;
    [[nodiscard]] virtual Point fromQt(QPointF point) const = 0;
    [[nodiscard]] virtual QRect toQt(const Rect &rect) const = 0;

Q_SIGNALS:
    /// A screen came, went, moved or changed its free area.
    void changed();
};

/// The screens of the running desktop. One rearrangement is one changed(), once it is complete.
class DesktopScreens final : public Screens, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit DesktopScreens(QObject *parent = nullptr);
    ~DesktopScreens() override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

    [[nodiscard]] QList<Screen> all() const override;
    [[nodiscard]] std::optional<Screen> main() const override;
    [[nodiscard]] QString arrangement() const override;
    [[nodiscard]] Rect fromQt(const QRect &rect) const override;
    [[nodiscard]] Point fromQt(QPointF point) const override;
    [[nodiscard]] QRect toQt(const Rect &rect) const override;

private:
    [[nodiscard]] QList<Screen> describe(const QList<QScreen *> &screens) const;
    void announce();

    bool m_isAnnounced = false;
};
