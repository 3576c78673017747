// SPDX-License-Identifier: MIT
#pragma once

#include <QGenericPlugin>

/// Code in the running program that tries everything to get out, in the main thread, in one of the
/// toolkit's pool, and in every thread that there is once the program rests. Never installed.
///
/// Prints a line for each attempt: the thread's name, the attempt, and "worked" or the name of the
/// errno, with tabs between them; "done" at the end.
class BreakOutPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "BreakOutPlugin.json")

public:
    QObject *create(const QString &name, const QString &specification) override;
};
