// SPDX-License-Identifier: MIT
#pragma once

#include "Dice.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

/// A program that keeps files of its own in some folders and adds, replaces, renames and removes
/// them at a steady rate, in a thread, by their paths, as one does that synchronises folders.
///
/// Where a folder is exchanged right between two of its calls, a file that it made before may be
/// there a moment later only; it then tries again.
class ForeignWriter {
public:
    ForeignWriter(std::vector<std::filesystem::path> folders, int changesPerSecond)
        : m_folders(std::move(folders))
        , m_pause(std::chrono::nanoseconds(std::chrono::seconds(1)) / changesPerSecond)
        , m_thread([this] { work(); })
    {
    }
    ForeignWriter(const ForeignWriter &) = delete;
    ForeignWriter &operator=(const ForeignWriter &) = delete;
    ~ForeignWriter() { stop(); }

    void stop()
    {
        m_isStopped = true;
        if (m_thread.joinable())
            m_thread.join();
    }

    /// After it was stopped: what is to be there, by its path.
    [[nodiscard]] const std::map<std::string, std::string> &files() const { return m_files; }
    [[nodiscard]] int changes() const { return m_changes; }

    /// Calls that did not find a file at once that it had made, and such that never did.
    [[nodiscard]] int repetitions() const { return m_repetitions; }
    [[nodiscard]] int failures() const { return m_failures; }

    /// What is there, of the files that are not Markdown.
    [[nodiscard]] std::map<std::string, std::string> found() const
    {
        std::map<std::string, std::string> found;
        for (const std::filesystem::path &folder : m_folders) {
            for (const auto &entry : std::filesystem::directory_iterator(folder)) {
                if (entry.path().extension() == ".md")
                    continue;
                std::ifstream file(entry.path(), std::ios::binary);
                found[entry.path()] = std::string(std::istreambuf_iterator<char>(file), {});
            }
        }
        return found;
    }

private:
    void work()
    {
        auto next = std::chrono::steady_clock::now();
        while (!m_isStopped) {
            change();
            ++m_changes;
            next += m_pause;
            std::this_thread::sleep_until(next);
        }
    }

    void change()
    {
        constexpr std::size_t mostFiles = 40;
        const std::uint32_t kind = m_dice.below(4);
        const std::string fresh = freshPath();
        if (m_files.empty() || (kind == 0 && m_files.size() < mostFiles)) {
            make(fresh);
            return;
        }
        const std::string path =
            std::next(m_files.begin(), static_cast<std::ptrdiff_t>(m_dice.below(m_files.size())))
                ->first;
        if (kind == 1) {
            // As a careful program replaces a file.
            make(fresh);
            move(fresh, path);
        } else if (kind == 2) {
            move(path, fresh);
        } else {
            if (repeated([&] { return std::filesystem::remove(path); }))
                m_files.erase(path);
        }
    }

    [[nodiscard]] std::string freshPath()
    {
        const std::filesystem::path &folder = m_folders.at(m_dice.below(m_folders.size()));
        return folder / ("theirs " + std::to_string(++m_count));
    }

    void make(const std::string &path)
    {
        const std::string content = "content of " + path;
        const bool isMade = repeated([&] {
            std::ofstream file(path, std::ios::binary);
            file << content;
            return file.flush().good();
        });
        if (isMade)
            m_files[path] = content;
    }

    void move(const std::string &from, const std::string &to)
    {
        const bool isMoved = repeated([&] {
            std::error_code error;
            std::filesystem::rename(from, to, error);
            return !error;
        });
        if (isMoved) {
            m_files[to] = m_files[from];
            m_files.erase(from);
        }
    }

    template <typename Call>
    bool repeated(Call call)
    {
        constexpr auto longest = std::chrono::seconds(10);
        const auto begin = std::chrono::steady_clock::now();
        while (!call()) {
            if (std::chrono::steady_clock::now() - begin > longest) {
                ++m_failures;
                return false;
            }
            ++m_repetitions;
            std::this_thread::yield();
        }
        return true;
    }

    const std::vector<std::filesystem::path> m_folders;
    const std::chrono::nanoseconds m_pause;
    Dice m_dice{1};
    std::map<std::string, std::string> m_files;
    int m_count = 0;
    int m_changes = 0;
    int m_repetitions = 0;
    int m_failures = 0;
    std::atomic<bool> m_isStopped = false;
    std::thread m_thread;
};
