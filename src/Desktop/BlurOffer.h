// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <xcb/xproto.h>

/// Whether the compositing manager blurs what lies behind windows that ask for it. KWin announces
/// that on the root window, with a property named as the one that a window asks with. Internal to
/// Desktop.
class BlurOffer final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    static constexpr auto propertyName = "_KDE_NET_WM_BLUR_BEHIND_REGION";

    explicit BlurOffer(QObject *parent = nullptr);
    ~BlurOffer() override;

    [[nodiscard]] bool isMade() const noexcept { return m_isMade; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

Q_SIGNALS:
    void changed();

private:
    const xcb_atom_t m_property;
    bool m_isMade = false;
};
