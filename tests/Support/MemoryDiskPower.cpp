// SPDX-License-Identifier: MIT
// What is on a MemoryDisk for good and what is not yet.
#include "MemoryDiskDetail.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace MemoryDiskDetail;

void MemoryDisk::remember(Change change)
{
    if (m_image.m_abilities.canLosePower)
        m_image.m_changes.push_back(std::move(change));
}

Result<void> MemoryDisk::sync(Handle handle) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::sync, .inode = number}, [&]() -> Result<void> {
        if (m_image.m_abilities.canLosePower)
            makeDurable(number);
        return {};
    });
}

Result<void> MemoryDisk::syncFileSystem(Handle handle) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::syncFileSystem, .inode = number},
                   [&]() -> Result<void> {
                       if (m_image.m_abilities.canLosePower) {
                           m_image.m_changes.clear();
                           m_image.m_durable = m_image.m_inodes;
                           sweep();
                       }
                       return {};
                   });
}

/// A file's content, or a folder's own changes with all that came before and that they build on.
void MemoryDisk::makeDurable(Number number)
{
    Table &durable = m_image.m_durable;
    durable.resize(m_image.m_inodes.size());
    if (inode(number).kind != FileKind::folder) {
        durable[number] = m_image.m_inodes[number];
        return;
    }
    std::vector<Change> &changes = m_image.m_changes;
    std::vector<bool> isNeeded(changes.size());
    std::vector<bool> needsInode(m_image.m_inodes.size());
    std::vector<bool> needsEmpty(m_image.m_inodes.size());
    std::vector<std::pair<Number, const std::string *>> needsName;
    const auto isNamed = [&](Number folder, const Bytes &name) {
        return std::ranges::any_of(needsName, [&](const auto &needed) {
            return needed.first == folder && *needed.second == *name;
        });
    };
    for (std::size_t i = changes.size(); i-- > 0;) {
        const Change &change = changes[i];
        const bool buildsOn = needsInode[change.inode] ||
                              (change.other != noInode && needsInode[change.other]) ||
                              needsEmpty[change.folder] || needsEmpty[change.toFolder] ||
                              isNamed(change.folder, change.name) ||
                              (change.newName && isNamed(change.toFolder, change.newName));
        if (change.folder != number && change.toFolder != number && !buildsOn)
            continue;
        isNeeded[i] = true;
        for (const Number needed : {change.inode, change.other, change.folder, change.toFolder})
            needsInode[needed] = true;
        if (change.kind == Change::Kind::leave)
            needsEmpty[change.inode] = true;
        if (change.kind == Change::Kind::move && change.other != noInode)
            needsEmpty[change.other] = true;
        needsName.emplace_back(change.folder, change.name.get());
        if (change.newName)
            needsName.emplace_back(change.toFolder, change.newName.get());
        // 0 stands for none.
        needsInode[noInode] = false;
    }
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (isNeeded[i] && !apply(durable, m_image.m_inodes, changes[i]))
            misuse("a change that was synced does not fit what is on the disk");
    }
    std::size_t i = 0;
    std::erase_if(changes, [&](const Change &) { return isNeeded[i++]; });
    if (durable[number]) {
        // Its own properties come along, and its entries are what the changes made of them.
        Inode &folder = edit(durable, number);
        const std::vector<Entry> entries = std::move(folder.entries);
        const Number parent = folder.parent;
        folder = inode(number);
        folder.entries = entries;
        folder.parent = parent;
    }
    sweep();
}

/// False when what it builds on is not there.
bool MemoryDisk::apply(Table &table, const Table &now, const Change &change)
{
    if (!table[change.folder] || !table[change.toFolder])
        return false;
    const auto numberAt = [&](Number folder, const Bytes &name) {
        const Entry *entry = find(*table[folder], name->c_str());
        return entry ? entry->inode : noInode;
    };
    const auto isEmpty = [&](Number number) {
        return !table[number] || table[number]->entries.empty();
    };
    const auto setParent = [&](Number number, Number parent) {
        if (table[number]->kind == FileKind::folder)
            edit(table, number).parent = parent;
    };
    const Number first = numberAt(change.folder, change.name);
    switch (change.kind) {
    case Change::Kind::enter:
        if (first != noInode)
            return false;
        if (!table[change.inode]) {
            // Its name is there and nothing of what it holds.
            const auto made = std::make_shared<Inode>(*now[change.inode]);
            made->entries.clear();
            if (made->kind == FileKind::file)
                made->bytes = sharedText("");
            table[change.inode] = made;
        }
        put(edit(table, change.folder), change.name, change.inode);
        setParent(change.inode, change.folder);
        return true;
    case Change::Kind::leave:
        if (first != change.inode || !isEmpty(change.inode))
            return false;
        takeOut(edit(table, change.folder), change.name->c_str());
        return true;
    case Change::Kind::move:
    case Change::Kind::exchange:
        break;
    }
    const Number second = numberAt(change.toFolder, change.newName);
    const bool isExchange = change.kind == Change::Kind::exchange;
    if (first != change.inode || second != change.other ||
        isAncestor(table, change.inode, change.toFolder) ||
        (isExchange && isAncestor(table, change.other, change.folder)) ||
        (!isExchange && second != noInode && !isEmpty(second)))
        return false;
    takeOut(edit(table, change.folder), change.name->c_str());
    if (second != noInode)
        takeOut(edit(table, change.toFolder), change.newName->c_str());
    put(edit(table, change.toFolder), change.newName, change.inode);
    setParent(change.inode, change.toFolder);
    if (isExchange) {
        put(edit(table, change.folder), change.name, change.other);
        setParent(change.other, change.folder);
    }
    return true;
}

/// Whether a move of the folder to below the inode would cut both off from the rest.
bool MemoryDisk::isAncestor(const Table &table, Number folder, Number inode)
{
    for (;;) {
        if (inode == folder)
            return true;
        const Number above = table[inode]->parent;
        if (above == inode || above == noInode || !table[above])
            return false;
        inode = above;
    }
}

MemoryDisk::Image MemoryDisk::afterPowerCut(Dice &dice) const
{
    if (!m_image.m_abilities.canLosePower)
        misuse("the disk does not know what is on it");
    const Table &now = m_image.m_inodes;
    Table table = m_image.m_durable;
    table.resize(now.size());

    const std::vector<Change> &changes = m_image.m_changes;
    if (dice.hasChance(40)) {
        const std::size_t count = dice.below(changes.size() + 1);
        for (std::size_t i = 0; i < count; ++i)
            apply(table, now, changes[i]);
    } else {
        constexpr std::array<std::uint32_t, 4> chances{0, 15, 50, 90};
        const std::uint32_t chance = chances.at(dice.below(chances.size()));
        for (const Change &change : changes) {
            if (dice.hasChance(chance))
                apply(table, now, change);
        }
    }

    // What is found from the root stays, with as many links as are found.
    std::vector<std::uint32_t> links(table.size());
    std::vector<Number> reached{root};
    links[root] = 1;
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const Entry &entry : table[reached[i]]->entries) {
            if (++links[entry.inode] == 1)
                reached.push_back(entry.inode);
        }
    }
    for (Number number = root; number < table.size(); ++number) {
        if (links[number] == 0) {
            table[number].reset();
            continue;
        }
        if (table[number]->links != links[number])
            edit(table, number).links = links[number];
        if (table[number]->kind != FileKind::file || table[number]->bytes == now[number]->bytes)
            continue;
        const std::string &before = *table[number]->bytes;
        std::string content = *now[number]->bytes;
        switch (dice.below(5)) {
        case 0:
            content = before;
            break;
        case 1:
            content.clear();
            break;
        case 2:
            content.resize(dice.below(content.size() + 1));
            break;
        case 3: {
            // The length is there, and not all of the blocks.
            const std::size_t kept = dice.below(content.size() + 1);
            std::fill(content.begin() + static_cast<std::ptrdiff_t>(kept), content.end(), '\0');
            break;
        }
        default:
            break;
        }
        edit(table, number).bytes = std::make_shared<const std::string>(std::move(content));
    }

    Image image;
    image.m_inodes = table;
    image.m_durable = std::move(table);
    image.m_clock = m_image.m_clock;
    image.m_abilities = m_image.m_abilities;
    return image;
}
