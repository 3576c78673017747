// SPDX-License-Identifier: MIT
// Any text is either refused or read as a note, and a note that was read is written and read again
// unchanged.
#include "NoteMarkdownCodec.h"
#include "RepositoryError.h"

#include <QByteArrayView>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(
        QByteArrayView(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    try {
        const QString written = NoteMarkdownCodec::encode(NoteMarkdownCodec::decode(text));
        const Note again = NoteMarkdownCodec::decode(written);
        if (NoteMarkdownCodec::encode(again) != written) {
            std::abort();
        }
    } catch (const RepositoryError &) {
        return 0;
    }
    return 0;
}
