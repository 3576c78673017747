// SPDX-License-Identifier: MIT
#include "ProcessStart.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

void occupyStandardFiles()
{
    int descriptor = ::open("/dev/null", O_RDWR);
    while (descriptor != -1 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor != -1)
        ::close(descriptor);
}

void leaveNoCoreFile()
{
    // One byte is too little for a file, and to the kernel it means that no reporter is started
    // either, which 0 does not (core(5)). A debugger may raise the limit again.
    rlimit limit{};
    if (::getrlimit(RLIMIT_CORE, &limit) == 0) {
        limit.rlim_cur = std::min<rlim_t>(1, limit.rlim_max);
        ::setrlimit(RLIMIT_CORE, &limit);
    }
}
