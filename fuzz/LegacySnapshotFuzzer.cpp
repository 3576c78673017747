// SPDX-License-Identifier: MIT
// Any bytes are either refused or read as a snapshot whose every note can be written as a file.
#include "LegacySnapshot.h"
#include "NoteMarkdownCodec.h"
#include "StorageError.h"

#include <QByteArray>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    NoteSnapshot snapshot;
    try {
        snapshot = decodeLegacySnapshot(bytes);
    } catch (const StorageError &) {
        return 0;
    }
    for (const Note &note : snapshot.notes) {
        // A body with a lone surrogate cannot be written as UTF-8; it must have been refused.
        if (QString::fromUtf8(note.body.toUtf8()) != note.body) {
            std::abort();
        }
        const Note again = NoteMarkdownCodec::decode(NoteMarkdownCodec::encode(note));
        if (again.id != note.id || again.body != note.body) {
            std::abort();
        }
    }
    return 0;
}
