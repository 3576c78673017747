// SPDX-License-Identifier: MIT
#pragma once

#include "DataFolder.h"
#include "FolderTransaction.h"
#include "SystemDisk.h"

#include <vector>

/// A transaction over the folder "Markdown" of a data folder, with all that must outlive it. The
/// constructor makes the stage.
class FolderChange {
public:
    static constexpr const char *stage = ".stage";
    static constexpr const char *recovery = ".recovery";

    explicit FolderChange(const DataFolder &folder, const std::vector<FileChange> &changes = {},
                          const std::vector<const char *> &ownFolders = {})
        : m_data(Directory::openOrMake(m_disk, folder.path()))
        , m_original(openOriginal(m_data))
        , m_place{m_data, m_data, live, stage, recovery}
        , m_transaction(m_place, m_original ? &*m_original : nullptr,
                        m_original ? FolderTree(*m_original) : FolderTree(), changes, ownFolders)
    {
    }

    [[nodiscard]] FolderTransaction &transaction() noexcept { return m_transaction; }

    /// With a check that finds nothing.
    [[nodiscard]] bool commit()
    {
        return m_transaction.commit([] { return true; });
    }

    /// While it is made and checked, which is when another program disturbs it worst.
    template <typename Action>
    [[nodiscard]] bool commitDuring(Action action)
    {
        return m_transaction.commit([&] {
            action();
            return true;
        });
    }

    /// What a commit has replaced. May be called once.
    [[nodiscard]] OldFolder takeOldFolder()
    {
        return m_transaction.takeOldFolder(std::move(m_data), std::move(*m_original), stage,
                                           recovery);
    }

    /// Commits and removes what was replaced; true when all of that took place.
    [[nodiscard]] bool complete()
    {
        if (!commit())
            return false;
        return !m_original ||
               takeOldFolder().remove(FolderTree::Deadline::max()) == OldFolder::Outcome::gone;
    }

private:
    static constexpr const char *live = "Markdown";

    static std::optional<Directory> openOriginal(const Directory &data)
    {
        Result<Directory> found = data.openFolder(live);
        if (!found && found.failure().is(ENOENT))
            return std::nullopt;
        return data.orThrow(std::move(found), live);
    }

    /// Outlives what a commit leaves to be removed.
    static inline SystemDisk m_disk;
    Directory m_data;
    std::optional<Directory> m_original;
    SwapPlace m_place;
    FolderTransaction m_transaction;
};
