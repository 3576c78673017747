// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <condition_variable>
#include <mutex>
#include <thread>

class Console;

/// A line on the terminal of the errors that says what takes so long, from the second second on,
/// and goes with this. Nothing where the errors go elsewhere.
class ProgressLine {
public:
    ProgressLine(const Console &console, const QString &what);
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;
    ~ProgressLine();

private:
    void show(const std::string &what);

    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_isEnded = false;
    std::thread m_thread;
};
