// SPDX-License-Identifier: MIT
#pragma once

#include "Dice.h"
#include "Disk.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class MemoryDisk;

/// One call on a disk, as a watcher sees it. The names live as long as the call.
struct DiskCall {
    enum class Kind : std::uint8_t {
        openPath,
        openFolder,
        openFile,
        makeFile,
        makeFolder,
        close,
        read,
        write,
        list,
        status,
        statusOfEntry,
        attributes,
        link,
        copySymbolicLink,
        rename,
        unlink,
        sync,
        syncFileSystem,
        setMode,
        lock,
        copyMetadata,
    };
    static constexpr int kindCount = 21;

    Kind kind;
    ino_t inode = 0; ///< What the handle stands for: a folder, or a file that is open.
    const char *name = "";
    ino_t other = 0; ///< The second handle, of calls that have one.
    const char *newName = "";

    /// Since the count was last set to 0.
    std::uint32_t number = 0;

    /// Whether it may change what a later load finds.
    [[nodiscard]] bool mayChangeDisk() const noexcept;

    [[nodiscard]] static const char *nameOf(Kind kind) noexcept;
};

/// Sees every call on a disk, and decides what comes of it.
class DiskWatcher {
public:
    struct Fate {
        enum class Kind : std::uint8_t {
            happens,
            fails,        ///< Nothing happens. A handle is closed nonetheless.
            answerIsLost, ///< It happens, but an error is reported. Not for calls that open.
            isShort,      ///< Only a part of the bytes is read or written.
        };
        Kind kind = Kind::happens;
        int error = 0;
    };

    /// May act on the disk as another program, by way of MemoryDisk::Unwatched.
    virtual Fate before(MemoryDisk &disk, const DiskCall &call) noexcept = 0;
    virtual void after(MemoryDisk &disk, const DiskCall &call) noexcept = 0;

protected:
    ~DiskWatcher() = default;
};

/// A disk that exists in memory only, with the rules of a Linux file system, a clock of its own,
/// and faults that happen when a test wants them to.
///
/// The clock moves by ten microseconds with every call, while the times of files move in steps of
/// four milliseconds, so that several changes may well carry the same time. The number of a file
/// that is gone is given to the next one that is made.
///
/// A wrong use is the end of the program: a handle that is not open, or one of the wrong kind for
/// the call, and a name that is a path.
class MemoryDisk final : public Disk {
    struct Inode;

    using Number = std::uint32_t;
    using Bytes = std::shared_ptr<const std::string>;
    using Table = std::vector<std::shared_ptr<Inode>>;

    /// A change of folders that a power cut may undo.
    struct Change {
        enum class Kind : std::uint8_t { enter, leave, move, exchange };
        Kind kind;
        Number folder;
        Number inode;
        Number toFolder; ///< Of enter and leave the same folder.
        Number other;    ///< What a move replaces, or the second inode of an exchange; or 0.
        Bytes name;
        Bytes newName;
    };

public:
    static constexpr std::int64_t callTime = 10'000;
    static constexpr std::int64_t tick = 4'000'000;

    /// What the file system and the user can do.
    struct Abilities {
        bool canExchange = true;
        bool canKeepFromReplacing = true;

        /// The error of every hard link; 0 when there are hard links.
        int linkError = 0;
        bool hasReliableTimes = true;

        /// The error of every lock; 0 when there are locks.
        int lockError = 0;

        /// Whether permissions do not count, as for root.
        bool isPrivileged = true;

        /// Whether the disk remembers what is not yet on it, for afterPowerCut(). Costs time.
        bool canLosePower = false;
    };

    /// All that is on the disk at one time. A copy costs a few hundred nanoseconds.
    class Image {
        friend class MemoryDisk;

        Table m_inodes;
        std::int64_t m_clock = 0;
        Abilities m_abilities;

        /// What a power cut cannot undo, by the same numbers, and what it can, in its order. Empty
        /// unless the disk can lose power.
        Table m_durable;
        std::vector<Change> m_changes;
    };

    /// While it lives, calls are made by another program: no watcher sees them and none is counted.
    class Unwatched {
    public:
        explicit Unwatched(MemoryDisk &disk) noexcept;
        Unwatched(const Unwatched &) = delete;
        Unwatched &operator=(const Unwatched &) = delete;
        ~Unwatched();

    private:
        MemoryDisk &m_disk;
        DiskWatcher *const m_watcher;
        const bool m_wasOther;
        const std::uint32_t m_callCount;
    };

    /// An empty disk.
    MemoryDisk();
    explicit MemoryDisk(const Abilities &abilities);
    explicit MemoryDisk(const Image &image);
    ~MemoryDisk() override;

    [[nodiscard]] const Image &image() const noexcept { return m_image; }

    /// Becomes what the image shows, as after a restart of the program. No handle may be open.
    void become(const Image &image);

    /// Forgets which handles are open, as when the program was killed.
    void closeAll();

    /// What the disk may hold after a power cut now: of the changes that no sync has put on it some
    /// are there, the first of them or any, and what was written without a sync is there, torn, cut
    /// off or missing.
    [[nodiscard]] Image afterPowerCut(Dice &dice) const;

    [[nodiscard]] const Abilities &abilities() const noexcept { return m_image.m_abilities; }
    void setAbilities(const Abilities &abilities);

    void letTimePass(std::int64_t nanoseconds) noexcept { m_image.m_clock += nanoseconds; }

    /// Null for none. Must live as long as it watches.
    void setWatcher(DiskWatcher *watcher) noexcept { m_watcher = watcher; }

    /// Null for none: receives a line for every call, as it ends.
    void setLog(std::vector<std::string> *log) noexcept { m_log = log; }

    [[nodiscard]] std::uint32_t callCount() const noexcept { return m_callCount; }
    void setCallCount(std::uint32_t count) noexcept { m_callCount = count; }
    [[nodiscard]] std::size_t openHandleCount() const noexcept;

    /// What a test sees without a call. Links are followed; nothing and null when there is no such
    /// entry. The content is a file's.
    [[nodiscard]] std::optional<FileStatus> statusAt(const char *path) const;
    [[nodiscard]] const std::string *contentAt(const char *path) const;

    /// The names in a folder, in no order; none when there is no such folder.
    [[nodiscard]] std::vector<std::string> namesAt(const char *path) const;

    /// What the storage never does, but other programs and tests do. The same errors as everywhere.
    /// On a disk without reliable times a file that is overwritten keeps its times.
    Result<void> overwrite(Handle folder, const char *name, const std::string &bytes) noexcept;
    Result<void> makeSymbolicLink(Handle folder, const char *name, const char *target) noexcept;
    Result<void> makePipe(Handle folder, const char *name) noexcept;
    Result<void> setAttributes(Handle folder, const char *name, Attributes attributes) noexcept;

    Result<Handle> openPath(const char *path) noexcept override;
    Result<Handle> openFolder(Handle folder, const char *name) noexcept override;
    Result<Handle> openFile(Handle folder, const char *name) noexcept override;
    Result<Handle> makeFile(Handle folder, const char *name) noexcept override;
    Result<void> makeFolder(Handle folder, const char *name) noexcept override;
    Result<void> close(Handle handle) noexcept override;
    Result<std::size_t> read(Handle file, char *bytes, std::size_t size) noexcept override;
    Result<std::size_t> write(Handle file, const char *bytes, std::size_t size) noexcept override;
    Result<void> list(Handle folder, ListingVisitor &visitor) override;
    Result<FileStatus> status(Handle handle) noexcept override;
    Result<FileStatus> status(Handle folder, const char *name) noexcept override;
    Result<Attributes> attributes(Handle folder, const char *name) noexcept override;
    Result<void> link(Handle from, Handle into, const char *name) noexcept override;
    Result<void> copySymbolicLink(Handle from, Handle into, const char *name) noexcept override;
    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override;
    Result<void> unlink(Handle folder, const char *name, FileKind kind) noexcept override;
    Result<void> sync(Handle handle) noexcept override;
    Result<void> syncFileSystem(Handle handle) noexcept override;
    Result<void> setMode(Handle handle, mode_t mode) noexcept override;
    Result<void> lock(Handle folder, Lock how) noexcept override;
    Result<void> copyMetadata(Handle from, Handle to) noexcept override;
    [[nodiscard]] std::int64_t now() noexcept override;
    [[nodiscard]] bool hasReliableTimes(Handle handle) noexcept override;
    [[nodiscard]] std::optional<std::size_t> mostEntries(Handle folder) noexcept override;

private:
    struct Entry;

    struct Open {
        Number inode = 0;
        std::uint32_t generation = 0;
        std::size_t offset = 0;
        bool isOpen = false;
        bool isWritable = false;
        std::optional<Lock> lock;
    };

    template <typename Action>
    auto perform(DiskCall call, Action action) -> decltype(action());
    void writeLog(const DiskCall &call, const Failure *failure);

    [[nodiscard]] Open &opened(Handle handle);
    [[nodiscard]] Number folderOf(Handle handle);
    [[nodiscard]] Result<Handle> open(Number inode, bool isWritable);
    [[nodiscard]] bool isOpen(Number inode) const noexcept;

    [[nodiscard]] const Inode &inode(Number number) const { return *m_image.m_inodes[number]; }
    [[nodiscard]] Inode &edit(Number number) { return edit(m_image.m_inodes, number); }
    [[nodiscard]] static Inode &edit(Table &table, Number number);

    [[nodiscard]] bool may(Number number, mode_t right) const noexcept;
    [[nodiscard]] int refusalToSearch(Number folder) const noexcept;
    [[nodiscard]] int refusalToEnter(Number folder, const char *name) const noexcept;
    [[nodiscard]] int refusalToLeave(Number folder, Number inode) const noexcept;
    [[nodiscard]] int refusalToRename(Number from, Number moved, Number to, Number replaced,
                                      Rename how) const noexcept;
    [[nodiscard]] static const Entry *find(const Inode &folder, const char *name) noexcept;

    /// 0 when there is none.
    [[nodiscard]] Number lookUp(Number folder, const char *name) const noexcept;
    [[nodiscard]] Result<Number> search(Number folder, const char *name) const noexcept;
    [[nodiscard]] Result<Number> walk(const char *path) const;

    [[nodiscard]] Number make(FileKind kind, mode_t mode);
    Result<void> makeEntry(Number folder, const char *name, FileKind kind, mode_t mode,
                           Bytes bytes);
    void enter(Number folder, const Bytes &name, Number inode);
    void leave(Number folder, const char *name);
    void release(Number number);
    void touchFolder(Number folder);
    [[nodiscard]] bool isBelow(Number inode, Number folder) const noexcept;
    [[nodiscard]] FileStatus statusOf(Number number) const noexcept;

    void remember(Change change);
    void makeDurable(Number number);
    void sweep();
    static bool apply(Table &table, const Table &now, const Change &change);
    static void put(Inode &folder, const Bytes &name, Number inode);
    static void takeOut(Inode &folder, const char *name);
    static bool isAncestor(const Table &table, Number folder, Number inode);

    Image m_image;
    std::vector<Open> m_handles;
    Number m_firstFree = 1;
    DiskWatcher *m_watcher = nullptr;
    std::vector<std::string> *m_log = nullptr;
    std::uint32_t m_callCount = 0;
    bool m_isOther = false;

    /// Whether the call under way reads or writes only a part.
    bool m_isShort = false;
};
