// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

/// Has this process do without the session bus when none runs, or when the one that should does not
/// answer within a second: says so on the standard error then. To be called before the application
/// object is made.
///
/// The D-Bus library waits 25 seconds for each answer, on the way to the first window already, and
/// where no bus runs it would start one that outlives the program.
void doWithoutSilentSessionBus();

/// Whether a bus greets who comes, until then. True also for one that is not reached by a socket of
/// this computer, since that cannot be told in advance.
[[nodiscard]] bool isBusAnswering(const QByteArray &address, QDeadlineTimer deadline);
