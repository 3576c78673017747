// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <optional>
#include <string>

/// Where a file or folder that is in use lies, and what the two that take part in its replacement
/// are called meanwhile.
struct SwapPlace {
    const Directory &parent; ///< Of the live one.
    const Directory &hidden; ///< Of the stage and the recovery copy; on the same file system.
    std::string live;
    std::string stage;
    std::string recovery;
};

/// Puts a finished stage in the place of a live file or folder, or takes the live one away, and
/// takes that back unless told to keep it.
///
/// From the swap on the old one has the recovery name, so that an interruption leaves it behind
/// under a name that asks for attention. Where the file system can exchange two names in one step,
/// the live one is never missing.
///
/// Files and folders are told apart by what they are and not by what they are called: another
/// program may move one at any time, and then nothing of its is touched.
class LiveSwap {
public:
    /// Does nothing yet. There is no old one where nothing was live, and no new one where what is
    /// live shall go. Becomes true: the new one has the stage's name again, but the disk may still
    /// have it under one that is looked for, so that none of it may be removed. The place and that
    /// must outlive this.
    LiveSwap(const SwapPlace &place, std::optional<FileIdentity> oldOne,
             std::optional<FileIdentity> newOne, bool &mayBeFound) noexcept;
    LiveSwap(const LiveSwap &) = delete;
    LiveSwap &operator=(const LiveSwap &) = delete;

    /// Undoes what keep() did not make final. What cannot be moved back stays where it is, and the
    /// old one then keeps the recovery name.
    ~LiveSwap();

    /// False when another one was in the place of the live one; it is there again. Throws a
    /// FileError, and RepositoryError::recoveryRequired for a failure that could not be undone.
    [[nodiscard]] bool perform();

    /// Makes the swap durable. The old one then has the stage's name, which nobody looks for.
    /// Throws like perform().
    void keep();

private:
    /// Where one of the two is.
    enum class Spot : std::uint8_t { nowhere, live, stage, recovery };

    Result<bool> publish();
    Result<void> exchange() noexcept;
    Result<void> moveInTwoSteps() noexcept;
    Result<void> tryExchange() noexcept;
    Result<void> moveOld(Spot to) noexcept;
    Result<void> moveNew(Spot to) noexcept;
    Result<void> move(Spot from, Spot to) noexcept;
    Result<void> sync() noexcept;

    /// Takes everything back and throws.
    [[noreturn]] void fail(Failure failure);
    void undo() noexcept;
    void refuseLeftRecoveryCopy() const;

    [[nodiscard]] const Directory &folder(Spot spot) const noexcept;
    [[nodiscard]] const char *name(Spot spot) const noexcept;
    Result<bool> isOld(Spot spot) const noexcept;
    Result<bool> isNew(Spot spot) const noexcept;
    Result<bool> isAt(Spot spot, const std::optional<FileIdentity> &one) const noexcept;

    const SwapPlace &m_place;
    const std::optional<FileIdentity> m_oldOne;
    const std::optional<FileIdentity> m_newOne;
    Spot m_old;
    Spot m_new;
    bool &m_mayBeFound;
    bool m_canExchange = true;
    bool m_hasRenamed = false; ///< Perhaps in vain.
    bool m_isDone = false;
};
