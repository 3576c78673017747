// SPDX-License-Identifier: MIT
// Random lives of a data folder on a disk in memory, stopped at every call: docs/FORMAT.md's
// promises must hold at each stop.
//
//   StorageSimulation [--stops COUNT] [--seed SEED] [--run NUMBER] [--jobs COUNT]
//
// Prints the seed, and what was tried. Ends with 1 when a promise was broken; the seed and the
// number of the run, given again, then show the same run with all its calls.
#include "StorageRun.h"

#include <QHashFunctions>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <numeric>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Options {
    std::uint64_t stops = 300'000;
    std::uint64_t seed = static_cast<std::uint64_t>(
        std::chrono::system_clock::now().time_since_epoch().count() % 1'000'000'000);
    std::optional<std::uint64_t> run;
    std::uint64_t jobs = 1;
};

/// What the processes share: each writes into a place of its own.
struct Job {
    StopCounts counts;
    std::uint64_t runs;
};

constexpr std::uint64_t mostJobs = 64;

std::uint64_t total(const StopCounts &counts)
{
    std::uint64_t sum = 0;
    for (const auto &row : counts)
        sum = std::accumulate(row.begin(), row.end(), sum);
    return sum;
}

std::optional<Options> parse(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; i += 2) {
        char *end = nullptr;
        const std::uint64_t number = i + 1 < argc ? std::strtoull(argv[i + 1], &end, 10) : 0;
        if (!end || *end != '\0' || end == argv[i + 1])
            return std::nullopt;
        if (std::strcmp(argv[i], "--stops") == 0)
            options.stops = number;
        else if (std::strcmp(argv[i], "--seed") == 0)
            options.seed = number;
        else if (std::strcmp(argv[i], "--run") == 0)
            options.run = number;
        else if (std::strcmp(argv[i], "--jobs") == 0)
            options.jobs = std::clamp<std::uint64_t>(number, 1, mostJobs);
        else
            return std::nullopt;
    }
    return options;
}

/// Empty when every promise held.
std::string brokenPromise(const Options &options, std::uint64_t run, StopCounts &counts,
                          std::vector<std::string> *log)
{
    StorageRun life(options.seed, run, counts);
    life.setLog(log);
    try {
        life.go();
    } catch (const BrokenPromise &broken) {
        return broken.sentence;
    } catch (const std::exception &error) {
        return std::string("It throws what is no error of the storage: ") + error.what();
    }
    return {};
}

/// Shows the run with all its calls. True when it broke a promise.
bool replay(const Options &options, std::uint64_t run)
{
    StopCounts counts{};
    std::vector<std::string> log;
    const std::string broken = brokenPromise(options, run, counts, &log);
    for (const std::string &line : log)
        std::printf("%s\n", line.c_str());
    std::printf("%s\n%s\n", broken.empty() ? "Every promise held." : "A promise is broken.",
                broken.c_str());
    return !broken.empty();
}

int work(const Options &options, std::uint64_t first, Job &job)
{
    const std::uint64_t share = options.stops / options.jobs;
    for (std::uint64_t run = first; total(job.counts) < share; run += options.jobs) {
        if (!brokenPromise(options, run, job.counts, nullptr).empty()) {
            replay(options, run);
            std::printf("StorageSimulation --seed %lu --run %lu\n", options.seed, run);
            std::fflush(stdout);
            return 1;
        }
        ++job.runs;
    }
    return 0;
}

void showProgress(const Job *jobs, const Options &options)
{
    std::uint64_t stops = 0;
    for (std::uint64_t i = 0; i < options.jobs; ++i)
        stops += total(jobs[i].counts);
    std::fprintf(stderr, "\r%lu of %lu stops", stops, options.stops);
}

void showCounts(const Job *jobs, const Options &options)
{
    StopCounts sums{};
    std::uint64_t runs = 0;
    for (std::uint64_t i = 0; i < options.jobs; ++i) {
        runs += jobs[i].runs;
        for (std::size_t kind = 0; kind < sums.size(); ++kind) {
            for (std::size_t operation = 0; operation < sums[kind].size(); ++operation)
                sums[kind][operation] += jobs[i].counts[kind][operation];
        }
    }
    std::printf("%-16s", "");
    for (int operation = 0; operation < operationCount; ++operation)
        std::printf("%10s", nameOf(static_cast<Operation>(operation)));
    for (std::size_t kind = 0; kind < sums.size(); ++kind) {
        std::printf("\n%-16s", nameOf(static_cast<StopKind>(kind)));
        for (const std::uint64_t count : sums[kind])
            std::printf("%10lu", count);
    }
    std::printf("\n%lu stops in %lu runs\n", total(sums), runs);
}

/// Each job is a process of its own. True when no promise was broken.
bool simulate(const Options &options)
{
    void *shared = ::mmap(nullptr, sizeof(Job) * options.jobs, PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        return false;
    Job *jobs = new (shared) Job[options.jobs]{};
    std::vector<pid_t> running;
    for (std::uint64_t i = 0; i < options.jobs; ++i) {
        const pid_t child = ::fork();
        if (child < 0)
            return false;
        if (child == 0)
            std::_Exit(work(options, i, jobs[i]));
        running.push_back(child);
    }
    bool isRight = true;
    const bool isWatched = ::isatty(STDERR_FILENO) != 0;
    while (!running.empty()) {
        int status = 0;
        const pid_t ended = ::waitpid(-1, &status, isWatched ? WNOHANG : 0);
        if (ended > 0) {
            std::erase(running, ended);
            isRight &= WIFEXITED(status) && WEXITSTATUS(status) == 0;
        } else if (ended == 0) {
            showProgress(jobs, options);
            ::usleep(200'000);
        }
        // The others would only repeat what is known.
        if (!isRight) {
            for (const pid_t other : running)
                ::kill(other, SIGTERM);
        }
    }
    if (isWatched)
        std::fprintf(stderr, "\n");
    showCounts(jobs, options);
    return isRight;
}

} // namespace

int main(int argc, char **argv)
{
    const std::optional<Options> options = parse(argc, argv);
    if (!options) {
        std::fputs("StorageSimulation [--stops COUNT] [--seed SEED] [--run NUMBER] "
                   "[--jobs COUNT]\n",
                   stderr);
        return 2;
    }
    // What is in a hash is the same in every run, too.
    QHashSeed::setDeterministicGlobalSeed();
    std::printf("seed %lu\n", options->seed);
    std::fflush(stdout);
    if (options->run)
        return replay(*options, *options->run) ? 1 : 0;
    return simulate(*options) ? 0 : 1;
}
