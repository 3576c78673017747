// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

class QWidget;

/// Makes a window active that got the keyboard without Qt's noticing.
///
/// Qt holds the loss of the keyboard back for 0.4 s. To a window that is hidden and shown again
/// within that time it never lost it, so that no widget in it is told that it has the focus, and
/// neither is a screen reader.
class FocusWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// The widget is the window, and the parent.
    explicit FocusWatch(QWidget &window);
    ~FocusWatch() override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void activateUnnoticed();

    QWidget &m_window;
};
