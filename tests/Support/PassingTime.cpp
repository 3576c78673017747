// SPDX-License-Identifier: MIT
#include "PassingTime.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <atomic>
#include <cstdint>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::int64_t second = 1'000'000'000;

/// In nanoseconds.
std::atomic<std::int64_t> passed = 0;

/// Of the clock that only goes forward, as the kernel has it; 0 while it goes on.
std::atomic<std::int64_t> stoodStillAt = 0;

std::int64_t kernelTime(clockid_t clock)
{
    timespec time{};
    ::syscall(SYS_clock_gettime, clock, &time);
    return time.tv_sec * second + time.tv_nsec;
}

} // namespace

/// Exported, since the libraries are to call this one.
extern "C" Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result != 0)
        return result;
    const bool standsStill = clock == CLOCK_MONOTONIC && stoodStillAt != 0;
    const std::int64_t now =
        (standsStill ? stoodStillAt.load() : time->tv_sec * second + time->tv_nsec) + passed;
    time->tv_sec = now / second;
    time->tv_nsec = now % second;
    return result;
}

void PassingTime::pass(std::chrono::milliseconds time)
{
    QElapsedTimer elapsed;
    elapsed.start();
    passed += std::chrono::nanoseconds(time).count();
    if (elapsed.elapsed() < time.count())
        qFatal("The libraries do not look at the clock of this program.");
    QCoreApplication::processEvents();
}

PassingTime::Standstill::Standstill()
{
    stoodStillAt = kernelTime(CLOCK_MONOTONIC);
}

PassingTime::Standstill::~Standstill()
{
    stoodStillAt = 0;
}
