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
    /// Errors show it as what it is about to become.
    Stage(const Directory &parent, std::string name, const std::filesystem::path &target)
        : m_parent(parent)
        , m_name(std::move(name))
        , m_folder(parent.makeFolder(m_name.c_str(), target))
    {
    }
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    ~Stage()
    {
        if (!m_isReleased)
            removeTree(m_parent, m_name.c_str());
    }

    [[nodiscard]] const Directory &folder() const { return m_folder; }
    void release() { m_isReleased = true; }

private:
    const Directory &m_parent;
    const std::string m_name;
    const Directory m_folder;
    bool m_isReleased = false;
};

std::optional<Directory> openTarget(const Directory &parent, const char *name)
{
    if (!parent.status(name))
        return std::nullopt;
    Directory target = parent.openFolder(name);
    if (target.isMountPoint())
        throw parent.error(name, FileError::Reason::mountPoint);
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
    Stage stage(parent, names.stage, target);
    const LinkedTree links = original ? LinkedTree(*original, stage.folder()) : LinkedTree();

    prepare(parent.path() / names.stage);
    links.sync(stage.folder());
    validateOriginal();

    FolderSwap swap(parent, names, original.has_value());
    swap.swap();
    if (original) {
        if (!links.isAsLinked(*original, &stage.folder()))
            throw RepositoryError::externalChange();
        if (validateDisplaced)
            validateDisplaced(parent.path() / names.recovery);
    }
    swap.keep();

    stage.release();
    if (original) {
        links.removeFrom(*original);
        static_cast<void>(parent.tryRemove(names.stage.c_str(), DirectoryListing::Kind::folder));
        static_cast<void>(parent.trySync());
    }
}
