// SPDX-License-Identifier: MIT
#include "OwnFolders.h"

#include "FileNames.h"
#include "LocalNoteRepository.h"
#include "UserFolders.h"

std::vector<std::filesystem::path> ownFolders()
{
    std::vector<std::filesystem::path> folders = LocalNoteRepository::defaultJournalFolders();
    folders.push_back(LocalNoteRepository::defaultFileURL().parent_path());
    folders.push_back(userConfigFolder() / FileNames::dataFolder);
    folders.push_back(userCacheFolder() / FileNames::dataFolder);
    return folders;
}

std::filesystem::path fontCacheFolder()
{
    return userCacheFolder() / "fontconfig";
}

void makeOwnFolders()
{
    for (const std::filesystem::path &path : ownFolders()) {
        // The session's own folder is not for its programs to make.
        std::error_code ignored;
        if (path.parent_path() != sessionFolder() ||
            std::filesystem::exists(path.parent_path(), ignored))
            makeUserFolder(path);
    }
    makeUserFolder(fontCacheFolder());
}
