// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The entries of one folder, without "." and "..", hidden ones included.
///
/// Names are bytes, which need not be UTF-8. They share one buffer, so that a folder of ten
/// thousand files costs a handful of allocations.
class DirectoryListing {
public:
    struct Entry {
        ino_t inode;
        std::size_t nameOffset;
        FileKind kind;
    };

    void add(ino_t inode, FileKind kind, std::string_view name);

    [[nodiscard]] const std::vector<Entry> &entries() const noexcept { return m_entries; }

    /// Ends with a NUL; valid until the next add().
    [[nodiscard]] const char *name(const Entry &entry) const noexcept
    {
        return m_names.data() + entry.nameOffset;
    }

    /// Orders the entries by their names, byte for byte.
    void sort();

    /// The entry of that name; null when there is none. The entries must be in order.
    [[nodiscard]] const Entry *find(const char *name) const noexcept;

    /// Keeps only the entries that the predicate accepts, in their order.
    template <typename Predicate>
    void keepIf(Predicate predicate)
    {
        std::erase_if(m_entries, [&](const Entry &entry) { return !predicate(entry); });
    }

private:
    /// How many bytes all names have in common at their fronts.
    [[nodiscard]] std::size_t commonLength() const noexcept;

    std::string m_names;
    std::vector<Entry> m_entries;
};
