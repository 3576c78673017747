// SPDX-License-Identifier: MIT
#include "ProgressLine.h"

#include "Console.h"
#include "SignalDelay.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

ProgressLine::ProgressLine(const Console &console, const QString &what)
{
    if (::isatty(STDERR_FILENO) != 1)
        return;
    // Signals are for the thread that does the work.
    const SignalDelay delay;
    m_thread = std::thread([this, text = console.text(what).toStdString()] { show(text); });
}

ProgressLine::~ProgressLine()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isEnded = true;
    }
    m_ended.notify_one();
    m_thread.join();
}

void ProgressLine::show(const std::string &what)
{
    const auto begin = std::chrono::steady_clock::now();
    std::unique_lock lock(m_mutex);
    bool isShown = false;
    for (int second = 1;; ++second) {
        if (m_ended.wait_until(lock, begin + std::chrono::seconds(second),
                               [this] { return m_isEnded; }))
            break;
        std::fprintf(stderr, "\r\033[K%s %d s", what.c_str(), second);
        isShown = true;
    }
    if (isShown)
        std::fputs("\r\033[K", stderr);
}
