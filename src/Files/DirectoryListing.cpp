// SPDX-License-Identifier: MIT
#include "DirectoryListing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

/// The first bytes of a name as a number that is ordered as they are.
std::uint64_t beginning(const char *name)
{
    std::uint64_t number = 0;
    for (unsigned i = 0; i < sizeof(number); ++i) {
        number = number << 8 | static_cast<unsigned char>(*name);
        name += *name != '\0' ? 1 : 0;
    }
    return number;
}

} // namespace

void DirectoryListing::add(ino_t inode, FileKind kind, std::string_view name)
{
    m_entries.push_back({inode, m_names.size(), kind});
    m_names.append(name);
    m_names.push_back('\0');
}

std::size_t DirectoryListing::commonLength() const noexcept
{
    if (m_entries.empty())
        return 0;
    const char *first = name(m_entries.front());
    std::size_t length = std::strlen(first);
    for (const Entry &entry : m_entries) {
        const char *other = name(entry);
        length =
            static_cast<std::size_t>(std::mismatch(first, first + length, other).first - first);
    }
    return length;
}

void DirectoryListing::sort()
{
    // Nearly all names differ within a few bytes, which are compared without looking them up.
    struct Key {
        std::uint64_t beginning;
        std::size_t place;
    };
    const std::size_t common = commonLength();
    std::vector<Key> keys;
    keys.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        keys.push_back({beginning(name(entry) + common), keys.size()});
    std::ranges::sort(keys, [this](const Key &a, const Key &b) {
        if (a.beginning != b.beginning)
            return a.beginning < b.beginning;
        return std::strcmp(name(m_entries[a.place]), name(m_entries[b.place])) < 0;
    });
    std::vector<Entry> sorted;
    sorted.reserve(keys.size());
    for (const Key &key : keys)
        sorted.push_back(m_entries[key.place]);
    m_entries = std::move(sorted);
}

const DirectoryListing::Entry *DirectoryListing::find(const char *name) const noexcept
{
    const auto isBefore = [this](const Entry &entry, const char *wanted) {
        return std::strcmp(this->name(entry), wanted) < 0;
    };
    const auto found = std::lower_bound(m_entries.begin(), m_entries.end(), name, isBefore);
    return found != m_entries.end() && std::strcmp(this->name(*found), name) == 0 ? &*found
                                                                                  : nullptr;
}
