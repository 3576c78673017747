// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The entries of one folder, without "." and "..", hidden ones included.
///
/// Names are bytes, which need not be UTF-8. They share one buffer, so that a folder of ten
/// thousand files costs a handful of allocations.
class DirectoryListing {
public:
    enum class Kind : std::uint8_t { file, folder, link, other };

    struct Entry {
        std::uint64_t inode;
        std::size_t nameOffset;
        Kind kind;

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    void add(std::uint64_t inode, Kind kind, std::string_view name);

    [[nodiscard]] const std::vector<Entry> &entries() const noexcept { return m_entries; }

    /// Ends with a NUL; valid until the next add().
    [[nodiscard]] const char *name(const Entry &entry) const noexcept
    {
        return m_names.data() + entry.nameOffset;
    }

    /// Orders the entries by their names, byte for byte.
    void sort();

    /// Keeps only the entries that the predicate accepts, in their order.
    template <typename Predicate>
    void keepIf(Predicate predicate)
    {
        std::erase_if(m_entries, [&](const Entry &entry) { return !predicate(entry); });
    }

    /// True when both were read alike: the same entries in the same order.
    friend bool operator==(const DirectoryListing &a, const DirectoryListing &b) = default;

private:
    std::string m_names;
    std::vector<Entry> m_entries;
};
