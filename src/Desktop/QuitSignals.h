// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// SIGTERM, SIGINT and SIGHUP as a Qt signal. Whoever sends them does not wait for an answer to a
/// question. One object a process.
///
/// Until the event loop runs they end the process as ever, so that a start that waits, for a disk
/// perhaps, is heard: nothing has been typed by then, and the notes bear a kill at any step.
class QuitSignals final : public QObject {
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested();

private:
    void listen();
    void readSignals();

    int m_descriptor = -1;
};
