// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "Refusal.h"

#include <QList>
#include <QStringList>
#include <QVariantList>
#include <chrono>
#include <filesystem>
#include <optional>

class QDBusConnection;

/// org.quillmark.Quillmark.Notes1, by which another program has the one that runs take notes:
///
///     AddNotes(in  ay folder       the data folder for which they are
///              in  as identifiers  of the notes
///              in  as times        of each, as in a note file: created and updated
///              in  at sizes        of each text in bytes
///              in  h  texts        sealed memory that holds them, one after the other, in UTF-8
///              out s  kind         empty: all of them are on the disk; else why none is
///              out s  key          of the sentence that says so
///              out av arguments)   of that sentence
///
/// Texts are handed over as memory and not as arguments: a bus takes no message of that size, and
/// who listens to its messages reads no note.
namespace NotesInterface {

inline constexpr auto busName = "org.quillmark.Quillmark";
inline constexpr auto objectPath = "/org/quillmark/Quillmark/Notes";
inline constexpr auto interfaceName = "org.quillmark.Quillmark.Notes1";
inline constexpr auto method = "AddNotes";

/// The kind of an answer from a program whose notes lie in another folder.
inline constexpr auto otherFolder = "other-folder";

/// The texts of notes in sealed memory. Nothing when the system gives none.
class SealedTexts {
public:
    [[nodiscard]] static std::optional<SealedTexts> of(const QList<Note> &notes);
    SealedTexts(SealedTexts &&other) noexcept;
    SealedTexts &operator=(SealedTexts &&) = delete;
    ~SealedTexts();

    [[nodiscard]] int descriptor() const noexcept { return m_descriptor; }
    [[nodiscard]] const QList<qulonglong> &sizes() const noexcept { return m_sizes; }

private:
    explicit SealedTexts(int descriptor) noexcept;

    int m_descriptor;
    QList<qulonglong> m_sizes;
};

/// The notes that were handed over. Nothing unless all of it is as it must be: memory that nobody
/// can change or cut off any more, and in it what the sizes say.
[[nodiscard]] std::optional<QList<Note>> notesFrom(const QStringList &identifiers,
                                                   const QStringList &times,
                                                   const QList<qulonglong> &sizes, int texts);

/// The three parts of an answer.
[[nodiscard]] QVariantList answerFor(const std::optional<Refusal> &refusal);

/// What came of asking.
struct Answer {
    enum class Kind {
        saved,
        refused,    ///< By the storage.
        elsewhere,  ///< A program runs, but on other notes.
        absent,     ///< No such program, or no bus.
        notOffered, ///< A program has the name and does not offer this, or not yet.
        silent,     ///< No answer in time: the notes may be saved yet.
    };
    Kind kind = Kind::absent;
    Refusal refusal;
};

/// Hands the notes to the program that runs, and waits for its answer. Starts no program.
[[nodiscard]] Answer addThere(const std::filesystem::path &dataFolder, const QList<Note> &notes,
                              std::chrono::milliseconds most);

/// The same, over this connection to a bus.
[[nodiscard]] Answer addThere(const QDBusConnection &bus, const std::filesystem::path &dataFolder,
                              const QList<Note> &notes, std::chrono::milliseconds most);

} // namespace NotesInterface
