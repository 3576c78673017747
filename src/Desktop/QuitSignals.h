// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// SIGTERM, SIGINT and SIGHUP as a Qt signal. They cannot be asked to wait for a question.
///
/// Blocks them for the whole process: construct it before any thread is started.
class QuitSignals final : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested();
};
