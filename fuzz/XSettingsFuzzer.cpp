// SPDX-License-Identifier: MIT
// Whoever owns a selection of the X server gives the settings: any bytes are read to their end or
// to where they make no sense, and more of the same bytes never takes back what was read.
#include "XSettingsFormat.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const ToolkitSettings whole = XSettingsFormat::reading(bytes);
    (void)whole.wishes();

    const ToolkitSettings half = XSettingsFormat::reading(bytes.first(bytes.size() / 2));
    if ((half.animates && !whole.animates) || whole.prefersDark)
        std::abort();
    return 0;
}
