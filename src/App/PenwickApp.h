// SPDX-License-Identifier: MIT
#pragma once

#include "AppDelegate.h"
#include "QuitSignals.h"
#include "SingleInstance.h"

#include <QApplication>
#include <memory>

class QSessionManager;

/// The running program: brings the delegate together with what starts it, wakes it and ends it.
///
/// It ends only by a wish to quit that passes the delegate's guard, the end of the session
/// included, or by someone who does not ask: a signal.
class PenwickApp final : public QObject {
    Q_OBJECT

public:
    PenwickApp(int &argc, char **argv);
    ~PenwickApp() override;

    /// Runs until the end of the program. The exit status; 1 when it cannot be the one that runs.
    [[nodiscard]] int run();

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    void reopen();
    void showEditor();
    void commitSession(QSessionManager &session);
    void quit();
    void end();

    QuitSignals m_quitSignals;
    // Is to exist before the application; see there.
    SingleInstance m_instance;
    const std::unique_ptr<QApplication> m_application;
    AppDelegate m_delegate;
    bool m_isStartedByBus = false;
};
