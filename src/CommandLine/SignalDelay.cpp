// SPDX-License-Identifier: MIT
#include "SignalDelay.h"

#include <initializer_list>
#include <pthread.h>

namespace {

constexpr std::initializer_list<int> delayed{SIGINT, SIGTERM, SIGHUP};

} // namespace

SignalDelay::SignalDelay() noexcept
{
    sigset_t signals{};
    ::sigemptyset(&signals);
    for (const int signal : delayed)
        ::sigaddset(&signals, signal);
    ::pthread_sigmask(SIG_BLOCK, &signals, &m_before);
}

SignalDelay::~SignalDelay()
{
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

bool SignalDelay::isAsked() noexcept
{
    sigset_t waiting{};
    ::sigpending(&waiting);
    for (const int signal : delayed) {
        if (::sigismember(&waiting, signal) == 1)
            return true;
    }
    return false;
}
