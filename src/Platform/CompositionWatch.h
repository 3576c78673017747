// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

/// Whether an input method is composing text in a window: the keys then belong to it.
class CompositionWatch final : public QObject {
    Q_OBJECT

public:
    explicit CompositionWatch(const QWidget &window);

    [[nodiscard]] bool isComposing() const noexcept { return m_isComposing; }

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    void follow(QObject *focusObject);

    const QWidget &m_window;
    QPointer<QObject> m_receiver;
    bool m_isComposing = false;
};
