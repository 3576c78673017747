// SPDX-License-Identifier: MIT
#include "FolderTransaction.h"

#include <utility>

namespace {

std::optional<FileIdentity> identityOf(const Directory &folder) noexcept
{
    const Result<FileStatus> status = folder.status();
    return status ? std::optional(status->identity) : std::nullopt;
}

/// Errors show the stage as what it is about to become. Nothing needs memory once there is one.
Directory makeStage(const SwapPlace &place)
{
    std::filesystem::path shown = place.parent.path() / place.live;
    Result<Directory> folder = place.hidden.makeFolder(place.stage.c_str());
    if (!folder)
        throw FileError(shown, folder.failure());
    folder->showAs(std::move(shown));
    return *std::move(folder);
}

} // namespace

FolderTransaction::Stage::Stage(const SwapPlace &swapPlace, const Directory *originalFolder,
                                FolderTree content)
    : place(swapPlace)
    , original(originalFolder)
    , tree(std::move(content))
    , folder(makeStage(place))
    , identity(identityOf(folder))
{
}

FolderTransaction::Stage::~Stage()
{
    // Another folder under its name is somebody else's, or the one that it was to replace. One
    // whose identity could not be told was never moved.
    const Directory &hidden = place.hidden;
    const char *name = place.stage.c_str();
    if (isReleased || (identity && !hidden.isAt(name, *identity).valueOr(false)))
        return;
    // While it was live for a moment, another program may have written into it.
    const Disk::Handle twin = original ? original->handle() : -1;
    Disk &disk = folder.disk();
    if (!isFinished || tree.settleCopy(disk, folder.handle(), twin).valueOr(true)) {
        if (!mayBeFound)
            removeTree(disk, hidden.handle(), name);
        return;
    }
    if (hidden.rename(name, hidden, place.recovery.c_str()))
        static_cast<void>(hidden.sync());
}

FolderTransaction::FolderTransaction(const SwapPlace &place, const Directory *original,
                                     FolderTree tree, std::span<const FileChange> changes,
                                     std::span<const char *const> ownFolders)
    : m_stage(place, original, std::move(tree))
{
    if (!m_stage.tree.copyTo(m_stage.folder, original, changes, ownFolders))
        return;
    m_stage.tree.syncCopy(m_stage.folder);
    m_stage.isFinished = true;
}

/// The less there is to be carried over once the new folder is live, the less do other programs
/// see of the exchange.
void FolderTransaction::catchUp()
{
    constexpr int mostTimes = 5;
    // A copy in the middle of it is not what the tree says.
    m_stage.isFinished = false;
    for (int i = 0; i < mostTimes && m_stage.tree.catchUp(m_stage.folder, *m_stage.original); ++i) {
    }
    m_stage.isFinished = true;
}

bool FolderTransaction::commit(const std::function<bool()> &areOldFilesSame)
{
    if (!m_stage.isFinished)
        return false;
    if (m_stage.original)
        catchUp();
    const SwapPlace &place = m_stage.place;
    const Directory *original = m_stage.original;
    LiveSwap swap(place,
                  original ? std::optional(original->orThrow(original->status()).identity)
                           : std::nullopt,
                  m_stage.folder.orThrow(m_stage.folder.status()).identity, m_stage.mayBeFound);
    if (!swap.perform())
        return false;
    if (original) {
        const Result<bool> isSettled = m_stage.tree.settleOriginal(
            original->disk(), original->handle(), m_stage.folder.handle());
        if (!place.parent.orThrow(isSettled, place.live) || !areOldFilesSame())
            return false;
    }
    swap.keep();
    m_stage.isReleased = true;
    return true;
}

OldFolder FolderTransaction::takeOldFolder(Directory hidden, Directory original,
                                           std::string stageName, std::string recoveryName) noexcept
{
    return {std::move(hidden),       std::move(original),  std::move(m_stage.folder),
            std::move(m_stage.tree), std::move(stageName), std::move(recoveryName)};
}
