// SPDX-License-Identifier: MIT
#pragma once

#include "MemoryDisk.h"
#include "StoredState.h"

#include <QMultiMap>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A promise of docs/FORMAT.md that did not hold.
struct BrokenPromise {
    std::string sentence;
};

/// Where everything is on the disk of the simulation.
namespace SimulatedFolder {

inline constexpr const char *path = "/data/Penwick";
inline constexpr const char *markdown = "/data/Penwick/Markdown";
inline constexpr const char *olderNotes = "/data/Penwick/notes.json";

[[nodiscard]] std::filesystem::path fileURL();

/// The names in the data folder that begin so, in an order that random names have no part in.
[[nodiscard]] std::vector<std::string> names(const MemoryDisk &disk, std::string_view prefix);

inline constexpr std::string_view stagePrefix = ".quillmark-stage-";
inline constexpr std::string_view recoveryPrefix = ".quillmark-recovery-";

/// Where what is typed is kept.
inline constexpr const char *journal = "/state/Penwick";

} // namespace SimulatedFolder

/// A file of another program, by its path.
struct ForeignFile {
    std::string bytes;
    ino_t inode = 0;
};
using ForeignFiles = std::map<std::string, ForeignFile>;

/// What may be found on a disk.
struct Expectation {
    /// One of these is what a load must bring.
    std::vector<NoteSnapshot> allowed;

    /// The same states without what was kept of the typing: what lies in the folder.
    std::vector<NoteSnapshot> saved;

    /// The place in the lists of the one whose notes there must be: live, or in a recovery copy.
    std::optional<std::size_t> required;

    /// Whether the notes of a state are those that there must be.
    [[nodiscard]] bool isAllowedNow(std::size_t state) const
    {
        return !required || saved[state] == saved[*required];
    }

    bool mayNeedRecovery = false;

    /// Whether a stage may lie there that is not among those which were there before.
    bool mayLeaveStage = false;
    std::set<std::string> stagesBefore;

    /// What was ever kept of the typing, by the key of the draft. A power cut may lose it, and may
    /// bring an older one back; that then stands above what was saved. Null when it can do neither.
    const QMultiMap<QString, StoredState::Kept> *everKept = nullptr;

    ForeignFiles foreign;

    /// A path and what must be found there in one of the folders at least; no path for none.
    std::pair<std::string, std::string> edited;
};

/// Whether what was found is the state with parts of what was typed and kept at some time.
[[nodiscard]] bool isSameButForTyping(const NoteSnapshot &found, const NoteSnapshot &state,
                                      const QMultiMap<QString, StoredState::Kept> &kept);

/// Looks at disks as the next start of the program would, and as the user would who was told of a
/// recovery copy.
class StopCheck {
public:
    struct Found {
        /// The state among those allowed, and what the load brought.
        std::size_t state = 0;
        NoteSnapshot shown;

        /// The disk on which it was found: a recovery copy is dealt with there.
        MemoryDisk::Image image;
        bool neededRecovery = false;
    };

    /// Throws a BrokenPromise. Where there is a recovery copy, the dice decide which of the two
    /// folders the user keeps.
    void check(const MemoryDisk::Image &image, const Expectation &expectation);
    [[nodiscard]] Found find(const MemoryDisk::Image &image, const Expectation &expectation,
                             Dice &dice);

private:
    struct Loaded {
        std::optional<NoteSnapshot> snapshot;
        bool needsRecovery = false;
        std::string error;
    };

    [[nodiscard]] Loaded load(const MemoryDisk::Image &image);
    [[nodiscard]] std::optional<std::size_t> match(const NoteSnapshot &found,
                                                   const Expectation &expectation) const;
    [[nodiscard]] std::vector<Found> findParts(const MemoryDisk::Image &image,
                                               const Expectation &expectation);
    [[nodiscard]] std::optional<Found> findPart(const MemoryDisk &arranged,
                                                const Expectation &expectation);
    [[nodiscard]] std::optional<Found> findRecovered(const MemoryDisk::Image &image,
                                                     const std::string &copy,
                                                     const Expectation &expectation);
    void checkStages(const Expectation &expectation) const;
    static void checkForeignFiles(const MemoryDisk &disk, const ForeignFiles &files);

    MemoryDisk m_disk;
};
