// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "FileNames.h"
#include "Notes.h"
#include "ScarceMemory.h"
#include "StorageError.h"
#include "Tidy.h"

#include <QTest>
#include <csignal>
#include <functional>
#include <memory>
#include <new>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

/// No power fails here, and thousands of saves are not to wait for a disk.
extern "C" Q_DECL_EXPORT int fsync(int /*file*/)
{
    return 0;
}
extern "C" Q_DECL_EXPORT int syncfs(int /*file*/) noexcept
{
    return 0;
}

namespace {

using Step = std::function<void(LocalNoteRepository &)>;

/// Something that a repository does, and what goes before it.
struct Operation {
    std::function<void(const DataFolder &)> given;
    Step before;
    Step act;

    /// What the repository holds once it is done; a load that follows answers the same.
    NoteSnapshot then;

    /// Undoes what may have been done, so that a load answers the old notes.
    Step takeBack = {};

    /// A load fails after it has made the folder that stands for the older file, and that stays.
    bool mayFailAfterwards = false;
};
using MakeOperation = Operation (*)();

/// Until when memory is missing, from one allocation on.
enum class Until { next, return_, gone };

/// What one run came to. A process ends with it, so that an end of another kind shows.
enum Verdict {
    held = 1,
    heldWithoutAFailure,
    threwAnotherError,
    brokeTheNotes,
    leftSomething,
    lostTheRepository,
    leftAFileOpen,
    couldNotRun,
    endedTheProgram
};

const char *text(int verdict)
{
    switch (verdict) {
    case held:
    case heldWithoutAFailure:
        return "held";
    case threwAnotherError:
        return "it threw an error of another kind";
    case brokeTheNotes:
        return "the notes are neither the old nor the new ones";
    case leftSomething:
        return "a file is left behind";
    case lostTheRepository:
        return "the repository does not work any more";
    case leftAFileOpen:
        return "a file is left open";
    case couldNotRun:
        return "it could not be run";
    default:
        return "the program ended";
    }
}

QString key(int number)
{
    return canonicalText(numberedId(number));
}

NoteSnapshot oldNotes()
{
    return snapshotOf({numberedNote(1, u"one"_s), numberedNote(2, u"two"_s),
                       numberedNote(3, u"three is long enough for a buffer of its own"_s)},
                      u"a draft of the capture screen"_s, {{key(1), u"one, being edited"_s}});
}

/// After the operation, to see whether the repository still works.
NoteSnapshot nextNotes()
{
    return snapshotOf({numberedNote(2, u"two"_s), numberedNote(9, u"another one"_s)}, u"on"_s,
                      {{key(9), u"and on"_s}});
}

const QUuid captureId = numberedId(77);

void haveOldNotes(const DataFolder &data)
{
    LocalNoteRepository repository(data.fileURL(), data.journalFolders());
    repository.save(oldNotes());
    fs::create_directory(data.path("journal"));
}

void loadOnly(LocalNoteRepository &repository)
{
    static_cast<void>(repository.load());
}

Operation saveOf(const NoteSnapshot &next)
{
    return {.given = haveOldNotes,
            .before = loadOnly,
            .act = [next](LocalNoteRepository &repository) { repository.save(next); },
            .then = next};
}

NoteSnapshot typedNotes()
{
    NoteSnapshot typed = oldNotes();
    typed.captureDraft += u", gone on with";
    typed.editingDrafts[key(1)] += u", gone on with";
    return typed;
}

Operation load()
{
    return {.given = haveOldNotes, .before = {}, .act = loadOnly, .then = oldNotes()};
}

Operation loadOfTypedText()
{
    const auto given = [](const DataFolder &data) {
        LocalNoteRepository repository(data.fileURL(), data.journalFolders());
        repository.save(oldNotes());
        repository.keepTyped(typedNotes(), captureId);
    };
    return {.given = given, .before = {}, .act = loadOnly, .then = typedNotes()};
}

Operation loadOfTheOlderFile()
{
    const auto given = [](const DataFolder &data) {
        data.write("notes.json", R"({"version": 1, "captureDraft": "typed", "editingDrafts": {},
            "notes": [{"id": ")" + key(1).toLatin1() +
                                     R"(", "body": "old", "createdAt": 0, "updatedAt": 0}]})");
    };
    Note note = numberedNote(1, u"old"_s);
    note.createdAt = note.updatedAt = Timestamp{0};
    return {.given = given,
            .before = {},
            .act = loadOnly,
            .then = snapshotOf({note}, u"typed"_s),
            .mayFailAfterwards = true};
}

Operation firstSave()
{
    return {.given = [](const DataFolder &) {},
            .before = loadOnly,
            .act = [next = oldNotes()](LocalNoteRepository &repository) { repository.save(next); },
            .then = oldNotes()};
}

Operation saveOfADraft()
{
    NoteSnapshot next = oldNotes();
    next.captureDraft += u", saved";
    return saveOf(next);
}

Operation saveOfTwoDrafts()
{
    NoteSnapshot next = oldNotes();
    next.captureDraft += u", saved";
    next.editingDrafts[key(2)] = u"two, being edited"_s;
    return saveOf(next);
}

Operation saveOfACapture()
{
    NoteSnapshot next = oldNotes();
    next.notes.append(numberedNote(4, next.captureDraft));
    next.captureDraft.clear();
    return saveOf(next);
}

Operation saveOfADeletion()
{
    NoteSnapshot next = oldNotes();
    next.notes.removeFirst();
    next.editingDrafts.clear();
    return saveOf(next);
}

Operation saveOfWhatWasKept()
{
    Operation operation = saveOf(typedNotes());
    operation.before = [](LocalNoteRepository &repository) {
        loadOnly(repository);
        repository.keepTyped(typedNotes(), captureId);
    };
    return operation;
}

Operation saveOfWhatWasTakenBack()
{
    Operation operation = saveOfACapture();
    operation.before = [](LocalNoteRepository &repository) {
        loadOnly(repository);
        repository.keepTyped(typedNotes(), captureId);
    };
    return operation;
}

Operation tidying()
{
    Operation operation = saveOfACapture();
    operation.before = [save = operation.act](LocalNoteRepository &repository) {
        loadOnly(repository);
        save(repository);
    };
    operation.act = [](LocalNoteRepository &repository) { tidyUp(repository); };
    return operation;
}

Operation keepTyped()
{
    return {
        .given = haveOldNotes,
        .before = loadOnly,
        .act = [typed = typedNotes()](
                   LocalNoteRepository &repository) { repository.keepTyped(typed, captureId); },
        .then = typedNotes(),
        .takeBack =
            [](LocalNoteRepository &repository) { repository.keepTyped(oldNotes(), captureId); }};
}

/// What is kept of the typing, and where; every program calls its file otherwise.
constexpr auto journalFile = "journal/typed";

DataFolder::Content contentOf(const DataFolder &data)
{
    DataFolder::Content content = data.content();
    for (const QByteArray &path : content.keys()) {
        if (path.startsWith(journalFile))
            content.insert(path.endsWith('~') ? "journal/typed~" : journalFile, content.take(path));
    }
    return content;
}

bool isTypedText(const QByteArray &path)
{
    return path == journalFile;
}

/// Without what was typed and not saved yet.
DataFolder::Content saved(DataFolder::Content content)
{
    content.removeIf([](const auto &entry) { return isTypedText(entry.key()); });
    return content;
}

/// Without what a save leaves for tidy().
DataFolder::Content notesAlone(DataFolder::Content content)
{
    content.removeIf([](const auto &entry) { return !entry.key().startsWith("Markdown"); });
    return content;
}

std::ptrdiff_t openFileCount()
{
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/// One operation, with memory that is missing at one of its allocations.
class ScarceRun {
public:
    ScarceRun(const Operation &operation, const DataFolder &data, const DataFolder::Content &after)
        : m_operation(operation)
        , m_data(data)
        , m_after(after)
        , m_openFileCount(openFileCount())
        , m_repository(std::make_unique<LocalNoteRepository>(data.fileURL(), data.journalFolders()))
    {
    }

    int verdict(std::size_t successes, Until until)
    {
        if (m_operation.before)
            m_operation.before(*m_repository);
        m_before = contentOf(m_data);
        act(successes, until);
        const bool hasFailed = ScarceMemory::failures() != 0;
        if (m_hasThrownAnother)
            return threwAnotherError;
        const auto notes = notesAlone(contentOf(m_data));
        m_isDone |= m_operation.mayFailAfterwards && notes == notesAlone(m_after);
        if (notes != notesAlone(m_isDone ? m_after : m_before))
            return brokeTheNotes;
        if (m_data.count(FileNames::recoveryPrefix) != 0)
            return leftSomething;
        if (const int found = m_repository ? judgeRepository() : judgeFolder(); found != held)
            return found;
        if (openFileCount() != m_openFileCount)
            return leftAFileOpen;
        return hasFailed ? held : heldWithoutAFailure;
    }

private:
    void act(std::size_t successes, Until until)
    {
        const ScarceMemory scarce(successes, until == Until::next ? ScarceMemory::Lack::passing
                                                                  : ScarceMemory::Lack::lasting);
        try {
            m_operation.act(*m_repository);
            m_isDone = true;
        } catch (const std::bad_alloc &) {
        } catch (const StorageError &) {
        } catch (...) {
            m_hasThrownAnother = true;
        }
        if (until == Until::gone)
            m_repository.reset();
    }

    /// What the next start finds.
    int judgeFolder() const
    {
        const auto found = contentOf(m_data);
        if (m_isDone ? found != m_after : saved(found) != saved(tidied()))
            return leftSomething;
        if (m_isDone && LocalNoteRepository(m_data.fileURL(), m_data.journalFolders()).load() !=
                            m_operation.then)
            return brokeTheNotes;
        return held;
    }

    /// The old notes without what an earlier save has left to the end of the repository.
    DataFolder::Content tidied() const
    {
        auto content = m_before;
        content.removeIf(
            [](const auto &entry) { return entry.key().startsWith(".quillmark-stage-"); });
        return content;
    }

    /// Whether the repository goes on as if nothing had been.
    int judgeRepository()
    {
        try {
            if (m_operation.takeBack) {
                m_operation.takeBack(*m_repository);
                if (LocalNoteRepository(m_data.fileURL(), m_data.journalFolders()).load() !=
                    oldNotes())
                    return lostTheRepository;
            }
            m_operation.act(*m_repository);
            if (LocalNoteRepository(m_data.fileURL(), m_data.journalFolders()).load() !=
                m_operation.then)
                return lostTheRepository;
            m_repository->save(nextNotes());
            m_repository.reset();
            if (LocalNoteRepository(m_data.fileURL(), m_data.journalFolders()).load() !=
                nextNotes())
                return lostTheRepository;
        } catch (const StorageError &) {
            return lostTheRepository;
        }
        auto found = contentOf(m_data);
        found.remove("notes.json");
        found.remove("journal");
        return found == notesAlone(found) ? held : leftSomething;
    }

    const Operation &m_operation;
    const DataFolder &m_data;
    const DataFolder::Content &m_after;
    const std::ptrdiff_t m_openFileCount;
    std::unique_ptr<LocalNoteRepository> m_repository;
    DataFolder::Content m_before;
    bool m_isDone = false;
    bool m_hasThrownAnother = false;
};

void copyInto(const DataFolder &data, const DataFolder &model)
{
    fs::create_directories(data.path());
    fs::copy(model.path(), data.path(), fs::copy_options::recursive);
    // What is typed is kept for one folder, by its path.
    if (!data.holds("journal"))
        return;
    const std::string before = TypingJournal::prefixOf(model.path());
    for (const fs::directory_entry &entry : fs::directory_iterator(data.path("journal"))) {
        std::string name = entry.path().filename();
        name.replace(0, before.size(), TypingJournal::prefixOf(data.path()));
        fs::rename(entry.path(), data.path("journal") / name);
    }
}

/// In a process of its own, so that its end is one run's and not the test's.
int verdictOf(const Operation &operation, const DataFolder &model, const DataFolder::Content &after,
              std::size_t successes, Until until)
{
    const DataFolder data;
    copyInto(data, model);
    const pid_t child = ::fork();
    if (child == 0) {
        // The test's own handler would trace the stack.
        std::signal(SIGABRT, SIG_DFL);
        std::signal(SIGSEGV, SIG_DFL);
        int verdict = couldNotRun;
        try {
            verdict = ScarceRun(operation, data, after).verdict(successes, until);
        } catch (...) {
        }
        ::_exit(verdict);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return couldNotRun;
    return WIFEXITED(status) ? WEXITSTATUS(status) : int(endedTheProgram);
}

/// What stands in the folder when nothing goes wrong.
DataFolder::Content contentAfter(const Operation &operation, const DataFolder &model)
{
    const DataFolder data;
    copyInto(data, model);
    {
        LocalNoteRepository repository(data.fileURL(), data.journalFolders());
        if (operation.before)
            operation.before(repository);
        operation.act(repository);
    }
    return contentOf(data);
}

} // namespace

Q_DECLARE_METATYPE(MakeOperation)
Q_DECLARE_METATYPE(Until)

class OutOfMemoryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsTheOldOrTheNewNotes_data();
    void keepsTheOldOrTheNewNotes();
};

void OutOfMemoryTest::keepsTheOldOrTheNewNotes_data()
{
    QTest::addColumn<MakeOperation>("makeOperation");
    QTest::addColumn<Until>("until");

    const std::pair<const char *, MakeOperation> operations[] = {
        {"load", load},
        {"load of typed text", loadOfTypedText},
        {"load of the older file", loadOfTheOlderFile},
        {"first save", firstSave},
        {"save of a draft", saveOfADraft},
        {"save of two drafts", saveOfTwoDrafts},
        {"save of a capture", saveOfACapture},
        {"save of a deletion", saveOfADeletion},
        {"save of what was kept", saveOfWhatWasKept},
        {"save of what was taken back", saveOfWhatWasTakenBack},
        {"tidy", tidying},
        {"keeping of typed text", keepTyped},
    };
    for (const auto &[name, operation] : operations) {
        QTest::addRow("%s, one allocation", name) << operation << Until::next;
        QTest::addRow("%s, until it returns", name) << operation << Until::return_;
        QTest::addRow("%s, until the end of the repository", name) << operation << Until::gone;
    }
}

void OutOfMemoryTest::keepsTheOldOrTheNewNotes()
{
    QFETCH(MakeOperation, makeOperation);
    QFETCH(Until, until);
    const Operation operation = makeOperation();
    const DataFolder model;
    fs::create_directories(model.path());
    operation.given(model);
    const auto after = contentAfter(operation, model);

    QStringList broken;
    std::size_t allocation = 0;
    int verdict = held;
    while (verdict != heldWithoutAFailure && allocation < 3000) {
        verdict = verdictOf(operation, model, after, allocation++, until);
        if (verdict != held && verdict != heldWithoutAFailure)
            broken.append(
                u"%1: %2"_s.arg(qulonglong(allocation)).arg(QLatin1StringView(text(verdict))));
    }

    QVERIFY2(broken.isEmpty(), qPrintable(broken.join(u'\n')));
    // The last run is the one without a failure.
    QCOMPARE(verdict, int(heldWithoutAFailure));
    QVERIFY(allocation > 1);
    qInfo("%zu allocations", allocation - 1);
}

QTEST_GUILESS_MAIN(OutOfMemoryTest)
#include "OutOfMemoryTest.moc"
