// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// SIGTERM, SIGINT and SIGHUP as a Qt signal. Whoever sends them does not wait for an answer to a
/// question.
///
/// From its construction on they no longer end the process: construct it before anything starts a
/// thread, since only later threads inherit that, and so before the application object. Signals
/// that arrive before the event loop runs are kept for it.
class QuitSignals final : public QObject {
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested();

private:
    void listen();
    void readSignal();

    int m_descriptor = -1;
};
