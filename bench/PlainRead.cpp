// SPDX-License-Identifier: MIT

// How long it takes to list a data folder and to read every file, and nothing more: the part of a
// start that no program can do without.
//
//   PlainRead DATA-FOLDER       milliseconds, the median of eleven times with warm caches

#include "PlainStorage.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fputs("PlainRead DATA-FOLDER\n", stderr);
        return 2;
    }
    std::array<double, 11> times{};
    std::size_t size = PlainStorage::load(argv[1]);
    for (double &time : times) {
        const auto begin = std::chrono::steady_clock::now();
        size += PlainStorage::load(argv[1]);
        const auto end = std::chrono::steady_clock::now();
        time = std::chrono::duration<double, std::milli>(end - begin).count();
    }
    std::ranges::nth_element(times, times.begin() + times.size() / 2);
    std::printf("%.3f\n", times[times.size() / 2]);
    return size > 0 ? 0 : 1;
}
