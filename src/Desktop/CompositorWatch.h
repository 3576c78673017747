// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

/// Whether a compositing manager draws the windows; it may start and stop at any time. On another
/// platform than X11 there always is one.
class CompositorWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit CompositorWatch(QObject *parent = nullptr);
    ~CompositorWatch() override;

    [[nodiscard]] bool isComposited() const noexcept { return m_isComposited; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

Q_SIGNALS:
    void changed();

private:
    bool m_isComposited = true;
    unsigned m_selectionEvent = 0;
};
