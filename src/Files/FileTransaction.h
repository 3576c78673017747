// SPDX-License-Identifier: MIT
#pragma once

#include "LiveSwap.h"

#include <functional>
#include <optional>
#include <string_view>

/// Writes, replaces or removes one file as one step. Like FolderTransaction, but no other file is
/// touched, linked or even looked at.
class FileTransaction {
public:
    /// Makes the stage, a file with the bytes, and puts it on the disk; none when the file is to
    /// go. The old status is what the live file was; none when there is to be no such file yet. The
    /// place must outlive this. Throws a FileError.
    FileTransaction(const SwapPlace &place, std::optional<std::string_view> bytes,
                    std::optional<FileStatus> oldStatus);

    /// Puts the new file in place. Once that is done, and while it can still be taken back, the
    /// check says whether the folder is in its place and the old file, if any, what it was; that
    /// lies in the hidden folder then, under the recovery name. Answers and throws like
    /// FolderTransaction::commit().
    [[nodiscard]] bool commit(const std::function<bool()> &isAllSame);

private:
    /// The hidden file. Gone with this, unless it was released or may be live.
    struct Stage {
        Stage(const SwapPlace &swapPlace, std::optional<std::string_view> bytes);
        Stage(const Stage &) = delete;
        Stage &operator=(const Stage &) = delete;
        ~Stage();

        const SwapPlace &place;
        std::optional<FileStatus> status;
        bool isReleased = false;
        bool mayBeFound = false; ///< As LiveSwap says.
    };

    void removeOldFile();

    Stage m_stage;
    const std::optional<FileStatus> m_oldStatus;
};
