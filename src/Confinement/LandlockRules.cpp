// SPDX-License-Identifier: MIT
#include "LandlockRules.h"

#include "Reach.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

// The kernel's own header may be older than the kernel, or missing: these are its numbers.
constexpr long createRuleset = 444;
constexpr long addRule = 445;
constexpr long restrictSelf = 446;
constexpr unsigned askVersion = 1;
constexpr int ruleOfPath = 1;
constexpr int ruleOfPort = 2;

using Rights = std::uint64_t;

constexpr Rights execute = 1U << 0;
constexpr Rights writeFile = 1U << 1;
constexpr Rights readFile = 1U << 2;
constexpr Rights readFolder = 1U << 3;
constexpr Rights removeFolder = 1U << 4;
constexpr Rights removeFile = 1U << 5;
constexpr Rights makeDevice = 1U << 6 | 1U << 11;
constexpr Rights makeFolder = 1U << 7;
constexpr Rights makeFile = 1U << 8;
constexpr Rights makeSocket = 1U << 9;
constexpr Rights makePipe = 1U << 10;
constexpr Rights makeLink = 1U << 12;
constexpr Rights linkAcross = 1U << 13; // ABI 2
constexpr Rights truncate = 1U << 14;   // ABI 3
constexpr Rights useDevice = 1U << 15;  // ABI 5

constexpr int abiOfDevices = 5;

constexpr Rights bindPort = 1U << 0;
constexpr Rights connectPort = 1U << 1;

constexpr Rights signalScope = 1U << 1;

constexpr Rights reading = readFile | readFolder;

/// Pipes and sockets, too: what others have put among the notes is moved along with them.
constexpr Rights writing = reading | writeFile | removeFolder | removeFile | makeFolder | makeFile |
                           makeSocket | makePipe | makeLink | linkAcross | truncate;

constexpr Rights ofFiles = execute | writeFile | readFile | truncate | useDevice;

struct RulesetAttributes {
    Rights files = 0;
    Rights network = 0;
    Rights scopes = 0;
};

struct __attribute__((packed)) PathRule {
    Rights allowed;
    std::int32_t parent;
};

struct PortRule {
    Rights allowed;
    std::uint64_t port;
};

Rights knownToFiles(int abi)
{
    Rights known = execute | writing | makeDevice;
    if (abi < LandlockRules::abiOfTruncation)
        known &= ~truncate;
    if (abi >= abiOfDevices)
        known |= useDevice;
    return known;
}

/// An older kernel takes a shorter structure.
std::size_t sizeOfAttributes(int abi)
{
    if (abi >= LandlockRules::abiOfSignals)
        return sizeof(RulesetAttributes);
    return abi >= LandlockRules::abiOfPorts ? offsetof(RulesetAttributes, scopes)
                                            : offsetof(RulesetAttributes, network);
}

using Identity = std::pair<dev_t, ino_t>;

/// The home folder and those in which it lies.
std::vector<Identity> homeAndAbove() noexcept
{
    std::vector<Identity> found;
    const char *home = std::getenv("HOME");
    std::error_code failure;
    std::filesystem::path path = std::filesystem::weakly_canonical(home ? home : "/", failure);
    for (bool isLast = failure.operator bool(); !isLast; path = path.parent_path()) {
        struct stat status {};
        if (::stat(path.c_str(), &status) == 0)
            found.emplace_back(status.st_dev, status.st_ino);
        isLast = !path.has_relative_path();
    }
    return found;
}

/// What is not there, and what cannot be a rule, is passed over, and so is what is left out.
void allow(int ruleset, const Reach::Places &places, Rights rights,
           const std::vector<Identity> &leftOut = {}) noexcept
{
    for (const std::filesystem::path &place : places) {
        const int file = ::open(place.c_str(), O_PATH | O_CLOEXEC);
        struct stat found {};
        if (file >= 0 && ::fstat(file, &found) == 0 &&
            std::ranges::find(leftOut, Identity(found.st_dev, found.st_ino)) == leftOut.end()) {
            const PathRule rule{S_ISDIR(found.st_mode) ? rights : rights & ofFiles, file};
            ::syscall(addRule, ruleset, ruleOfPath, &rule, 0);
        }
        if (file >= 0)
            ::close(file);
    }
}

void allow(int ruleset, const std::vector<std::uint16_t> &ports) noexcept
{
    for (const std::uint16_t port : ports) {
        const PortRule rule{connectPort, port};
        ::syscall(addRule, ruleset, ruleOfPort, &rule, 0);
    }
}

} // namespace

int LandlockRules::usableAbi() noexcept
{
    const long abi = ::syscall(createRuleset, nullptr, 0, askVersion);
    return abi >= firstAbi ? static_cast<int>(std::min<long>(abi, lastAbi)) : 0;
}

bool LandlockRules::enforce(const Reach &reach, int abi) noexcept
{
    const RulesetAttributes attributes{knownToFiles(abi), bindPort | connectPort, signalScope};
    const auto ruleset =
        static_cast<int>(::syscall(createRuleset, &attributes, sizeOfAttributes(abi), 0));
    if (ruleset < 0)
        return false;
    const std::vector<Identity> home = homeAndAbove();
    allow(ruleset, reach.readable, reading);
    allow(ruleset, reach.readableOutsideHome, reading, home);
    allow(ruleset, reach.writable, writing & knownToFiles(abi), home);
    if (abi >= abiOfPorts)
        allow(ruleset, reach.ports);
    const bool isEnforced = ::syscall(restrictSelf, ruleset, 0) == 0;
    ::close(ruleset);
    return isEnforced;
}
