// SPDX-License-Identifier: MIT
#include "MarkdownTransaction.h"

#include "FolderSwap.h"
#include "LinkedTree.h"
#include "NoteId.h"
#include "RepositoryError.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::string_view stagePrefix = ".quillmark-stage-";
constexpr std::string_view recoveryPrefix = ".quillmark-recovery-";

std::string freshName(std::string_view prefix)
{
    return std::string(prefix) + canonicalText(QUuid::createUuid()).toStdString();
}

void refuseRecoveryCopy(const Directory &folder)
{
    const DirectoryListing listing = folder.list();
    const bool hasCopy = std::ranges::any_of(listing.entries(), [&](const auto &entry) {
        return std::string_view(listing.name(entry)).starts_with(recoveryPrefix);
    });
    if (hasCopy)
        throw RepositoryError::recoveryRequired();
}

/// The hidden folder in which the new content is made. Gone with this, unless it was released.
class Stage {
public:
    /// Starts with all that the original holds, which is null when there is none. Errors show it as
    /// what it is about to become.
    Stage(const Directory &parent, const FolderSwap::Names &names,
          const std::filesystem::path &target, const Directory *original)
        : m_parent(parent)
        , m_names(names)
        , m_original(original)
        , m_folder(parent.makeFolder(names.stage.c_str(), target))
        , m_identity(m_folder.tryIdentity())
    {
    }
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    ~Stage()
    {
        // Another folder under its name is somebody else's, or the one that it was to replace. One
        // whose identity could not be told was never moved.
        if (m_isReleased ||
            (m_identity && !m_parent.tryIsAt(m_names.stage.c_str(), *m_identity).value_or(false)))
            return;
        // While it was live for a moment, another program may have written into it.
        if (m_content.tryIsStill(m_folder, m_original).value_or(true) || !m_isFinished)
            removeTree(m_parent, m_names.stage.c_str());
        else if (m_parent.tryRename(m_names.stage.c_str(), m_names.recovery.c_str()))
            static_cast<void>(m_parent.trySync());
    }

    /// Puts it on the disk. Nothing may be written into it any more.
    void finish(const LinkedTree &links)
    {
        m_content = LinkedTree::beside(links, m_folder);
        m_content.sync(m_folder);
        m_isFinished = true;
    }

    [[nodiscard]] const Directory &folder() const { return m_folder; }
    [[nodiscard]] const LinkedTree &content() const { return m_content; }
    void release() { m_isReleased = true; }

private:
    const Directory &m_parent;
    const FolderSwap::Names &m_names;
    const Directory *const m_original;
    const Directory m_folder;
    const std::optional<FileIdentity> m_identity;
    LinkedTree m_content;
    bool m_isFinished = false;
    bool m_isReleased = false;
};

std::optional<Directory> openTarget(const Directory &parent, const char *name)
{
    if (!parent.status(name))
        return std::nullopt;
    Directory target = parent.openFolder(name);
    if (target.isMountPoint())
        throw parent.error(name, Reason::mountPoint);
    return target;
}

} // namespace

void MarkdownTransaction::checkRecovery(const std::filesystem::path &folder)
{
    if (const std::optional<Directory> directory = Directory::openIfExists(folder))
        refuseRecoveryCopy(*directory);
}

void MarkdownTransaction::replace(
    const std::filesystem::path &target,
    const std::function<void(const std::filesystem::path &stage)> &prepare,
    const std::function<void()> &validateOriginal,
    const std::function<void(const std::filesystem::path &displaced)> &validateDisplaced)
{
    const Directory parent = Directory::openOrMake(target.parent_path());
    refuseRecoveryCopy(parent);

    const FolderSwap::Names names{.live = target.filename().native(),
                                  .stage = freshName(stagePrefix),
                                  .recovery = freshName(recoveryPrefix)};
    const std::optional<Directory> original = openTarget(parent, names.live.c_str());
    const Directory *const live = original ? &*original : nullptr;
    // An earlier try may have made the data folder and failed before that was on the disk.
    if (!live)
        Directory::syncPath(parent.path());
    Stage stage(parent, names, target, live);
    LinkedTree links = live ? LinkedTree(*live, stage.folder()) : LinkedTree();

    prepare(parent.path() / names.stage);
    stage.finish(links);
    validateOriginal();

    FolderSwap swap(parent, names, live, stage.folder());
    swap.swap();
    if (live) {
        // Here and below a file that the new folder does not have can still be lost.
        links.watchOwnFiles(*live, stage.content());
        const std::optional<bool> isSame = links.tryIsStill(*live, &stage.folder());
        if (!isSame)
            throw FileError(target, errno);
        if (!*isSame)
            throw RepositoryError::externalChange();
        if (validateDisplaced)
            validateDisplaced(parent.path() / names.recovery);
    }
    swap.keep();
    stage.release();
    if (live) {
        if (!links.tryIsStill(*live, &stage.folder()).value_or(true))
            swap.keepOldFolder();
        swap.removeOldFolder(links, *live);
    }
}
