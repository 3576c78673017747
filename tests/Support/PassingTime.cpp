// SPDX-License-Identifier: MIT
#include "PassingTime.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<std::time_t> passedSeconds = 0;

} // namespace

/// Exported, since the libraries are to call this one.
extern "C" Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0)
        time->tv_sec += passedSeconds;
    return result;
}

void PassingTime::pass(std::chrono::seconds time)
{
    QElapsedTimer elapsed;
    elapsed.start();
    passedSeconds += time.count();
    if (elapsed.elapsed() < std::chrono::milliseconds(time).count())
        qFatal("The libraries do not look at the clock of this program.");
    QCoreApplication::processEvents();
}
