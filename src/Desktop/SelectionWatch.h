// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <xcb/xproto.h>

/// Who owns a selection of the X server, as the programs do that serve a whole session, such as the
/// compositing manager: they may start and end at any time. On another platform than X11 nobody
/// does. Internal to Desktop.
class SelectionWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit SelectionWatch(xcb_atom_t selection, QObject *parent = nullptr);
    ~SelectionWatch() override;

    /// XCB_WINDOW_NONE for nobody.
    [[nodiscard]] xcb_window_t owner() const noexcept { return m_owner; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

Q_SIGNALS:
    void changed();

private:
    const xcb_atom_t m_selection;
    xcb_window_t m_owner = XCB_WINDOW_NONE;
    unsigned m_event = 0;
};
