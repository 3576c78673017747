// SPDX-License-Identifier: MIT

// How long the saves take that a writer waits for, until the new state is on the disk: a pause in
// typing, a capture, an edit, a deletion. Beside each stands a plain program that makes the same
// calls for the files that do not change. Ends with an error when a limit is missed.
//
//   SaveBench [NOTES...]        10,000 when not given

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "PlainStorage.h"
#include "StorageMeasure.h"

#include <cstdlib>
#include <thread>

namespace {

class Saves {
public:
    Saves(int count, int turns)
        : m_turns(turns)
        , m_snapshot(manyNotes(count))
        , m_repository(m_ours.fileURL())
    {
        m_repository.save(m_snapshot);
        LocalNoteRepository(m_plain.fileURL()).save(m_snapshot);
        const Note &note = m_snapshot.notes[count / 2];
        m_name = canonicalText(note.id).toStdString() + ".md";
        m_bytes = NoteMarkdownCodec::encode(note).toUtf8().toStdString();
    }

    /// The files that do not change are listed and looked at.
    bool measureDraft()
    {
        return compare(
            label("draft"), m_turns, 2.5,
            [&] {
                m_snapshot.captureDraft = u"thought %1"_s.arg(++m_number);
                rest();
            },
            [&] { m_repository.save(m_snapshot); },
            [&] { m_size = PlainStorage::look(m_plain.path().native()); });
    }

    /// They are linked as well.
    bool measureCapture()
    {
        return compareWithLinks("capture", [&] {
            m_snapshot.captureDraft = u"thought %1"_s.arg(++m_number);
            m_repository.save(m_snapshot);
            const Timestamp now{770000000.25 + m_number};
            m_snapshot.notes.prepend({QUuid::createUuid(), m_snapshot.captureDraft, now, now});
            m_snapshot.captureDraft.clear();
        });
    }

    bool measureEdit()
    {
        return compareWithLinks("edit", [&] {
            const qsizetype place = ++m_number % m_snapshot.notes.size();
            const QString text = u"edit %1"_s.arg(m_number);
            m_snapshot.editingDrafts[canonicalText(m_snapshot.notes[place].id)] = text;
            m_repository.save(m_snapshot);
            m_snapshot.editingDrafts.clear();
            m_snapshot.notes[place].body = text;
        });
    }

    bool measureDelete()
    {
        return compareWithLinks("delete", [&] {
            const QString key = canonicalText(m_snapshot.notes.last().id);
            m_snapshot.editingDrafts[key] = u"half an edit"_s;
            m_repository.save(m_snapshot);
            m_snapshot.editingDrafts.clear();
            m_snapshot.notes.removeLast();
        });
    }

private:
    bool compareWithLinks(const char *what, const std::function<void()> &change)
    {
        return compare(
            label(what), m_turns, 1.3,
            [&] {
                PlainStorage::removeStage(m_plain.path().native());
                change();
                rest();
            },
            [&] { m_repository.save(m_snapshot); },
            [&] { PlainStorage::linkAndWrite(m_plain.path().native(), m_name, m_bytes); });
    }

    /// As between two things that a person does: what a save leaves for later is done.
    void rest()
    {
        while (const auto pause = m_repository.tidy(std::chrono::hours(1)))
            std::this_thread::sleep_for(*pause);
    }

    const char *label(const char *what)
    {
        m_label = u"%1, %2 notes"_s.arg(QString::fromLatin1(what))
                      .arg(m_snapshot.notes.size())
                      .toStdString();
        return m_label.c_str();
    }

    const int m_turns;
    NoteSnapshot m_snapshot;
    const MeasuredFolder m_ours{"SaveBench-ours"};
    const MeasuredFolder m_plain{"SaveBench-plain"};
    LocalNoteRepository m_repository;
    std::string m_name;
    std::string m_bytes;
    std::string m_label;
    std::size_t m_size = 0;
    int m_number = 0;
};

bool measure(int count)
{
    Saves saves(count, count > 20'000 ? 3 : 15);
    bool isMet = saves.measureDraft();
    isMet = saves.measureCapture() && isMet;
    isMet = saves.measureEdit() && isMet;
    return saves.measureDelete() && isMet;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2)
        return measure(10'000) ? EXIT_SUCCESS : EXIT_FAILURE;
    bool isMet = true;
    for (int i = 1; i < argc; ++i)
        isMet = measure(std::atoi(argv[i])) && isMet;
    return isMet ? EXIT_SUCCESS : EXIT_FAILURE;
}
