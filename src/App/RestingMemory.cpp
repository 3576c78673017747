// SPDX-License-Identifier: MIT
#include "RestingMemory.h"

#include <cstdint>
#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// The first object is the program. What is read and run, and was never written to, is as it is in
/// the file.
int unmapCode(dl_phdr_info *program, std::size_t /*size*/, void * /*unused*/)
{
    const auto pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    for (int i = 0; i < program->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = program->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || segment.p_flags != (PF_R | PF_X))
            continue;
        const std::uintptr_t begin = (program->dlpi_addr + segment.p_vaddr) & ~(pageSize - 1);
        const std::uintptr_t end = program->dlpi_addr + segment.p_vaddr + segment.p_memsz;
        // Where it fails the code stays mapped, which is no harm.
        static_cast<void>(::madvise(reinterpret_cast<void *>(begin), end - begin, MADV_DONTNEED));
    }
    return 1; // No further object.
}

} // namespace

void giveMemoryBack()
{
    ::malloc_trim(0);
    ::dl_iterate_phdr(&unmapCode, nullptr);
}
