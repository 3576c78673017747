// SPDX-License-Identifier: MIT
// Any bytes are read as what was typed or left out, and what was read is written and read again
// unchanged.
#include "JournalFile.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    static_cast<void>(JournalFile::decodedOlder(QStringLiteral("capture"), bytes));
    const std::optional<JournalFile> file = JournalFile::decoded(bytes);
    if (!file)
        return 0;
    const std::optional<JournalFile> again = JournalFile::decoded(file->encoded());
    if (!again || again->drafts != file->drafts)
        std::abort();
    if (!file->drafts.empty() &&
        (again->number != file->number || again->captureId != file->captureId))
        std::abort();
    return 0;
}
