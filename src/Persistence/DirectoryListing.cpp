// SPDX-License-Identifier: MIT
#include "DirectoryListing.h"

#include <algorithm>
#include <cstring>

void DirectoryListing::add(std::uint64_t inode, Kind kind, std::string_view name)
{
    m_entries.push_back({inode, m_names.size(), kind});
    m_names.append(name);
    m_names.push_back('\0');
}

void DirectoryListing::sort()
{
    std::ranges::sort(m_entries, [this](const Entry &a, const Entry &b) {
        return std::strcmp(name(a), name(b)) < 0;
    });
}
