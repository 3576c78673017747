// SPDX-License-Identifier: MIT
#pragma once

#include "LocalNoteRepository.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <unistd.h>
#include <vector>

using namespace Qt::Literals::StringLiterals;

/// A data folder beside the program, so on a real disk and not in memory, gone with this.
class MeasuredFolder {
public:
    explicit MeasuredFolder(const char *name)
        : m_path(std::filesystem::read_symlink("/proc/self/exe").parent_path() /
                 (std::string(name) + "." + std::to_string(::getpid())))
    {
        std::filesystem::create_directory(m_path);
    }
    MeasuredFolder(const MeasuredFolder &) = delete;
    MeasuredFolder &operator=(const MeasuredFolder &) = delete;
    ~MeasuredFolder() { std::filesystem::remove_all(m_path); }

    [[nodiscard]] std::filesystem::path path() const { return m_path; }
    [[nodiscard]] std::filesystem::path fileURL() const { return m_path / "notes.json"; }

private:
    std::filesystem::path m_path;
};

/// Notes of 500 bytes each.
inline NoteSnapshot manyNotes(int count)
{
    NoteSnapshot snapshot;
    for (int i = 0; i < count; ++i) {
        const Timestamp time{760000000.25 + i};
        const QString body =
            u"Note %1. "_s.arg(i) + u"A thought that was caught in time. "_s.repeated(15);
        snapshot.notes.append({QUuid::createUuid(), body.first(500), time, time});
    }
    return snapshot;
}

inline double milliseconds(const std::function<void()> &action)
{
    const auto begin = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

/// Lets the two take turns, so that whatever slows the computer down slows both down, prints the
/// medians and their ratio, and answers whether that is within the limit. A first turn of each
/// warms the caches and does not count; neither does what is done before each of our turns.
inline bool compare(const char *what, int turns, double limit, const std::function<void()> &before,
                    const std::function<void()> &ours, const std::function<void()> &plain)
{
    std::vector<double> ourTimes;
    std::vector<double> plainTimes;
    for (int i = 0; i <= turns; ++i) {
        before();
        const double our = milliseconds(ours);
        const double reference = milliseconds(plain);
        if (i > 0) {
            ourTimes.push_back(our);
            plainTimes.push_back(reference);
        }
    }
    const double our = median(ourTimes);
    const double reference = median(plainTimes);
    const double ratio = our / reference;
    std::printf("%-24s %8.2f ms  plain %8.2f ms  ratio %.2f  limit %.2f  %s\n", what, our,
                reference, ratio, limit, ratio <= limit ? "met" : "MISSED");
    return ratio <= limit;
}
