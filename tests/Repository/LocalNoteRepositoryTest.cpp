// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "RacingDisk.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QFile>
#include <QTest>
#include <QUrl>
#include <limits>
#include <pwd.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

const QByteArray marker = "Quillmark Markdown 1\n";

/// A Markdown folder as the program itself writes it.
void writeFolder(const DataFolder &data, const QList<Note> &notes, const QByteArray &capture = {})
{
    data.write("Markdown/.format", marker);
    data.write("Markdown/Drafts/capture.md", capture);
    fs::create_directories(data.path("Markdown/Notes"));
    for (const Note &note : notes)
        data.write(noteFile(note.id), noteBytes(note));
}

NoteSnapshot withCapture(const QString &text)
{
    return snapshotOf({}, text);
}

NoteSnapshot ofVersion(qint64 version)
{
    NoteSnapshot snapshot;
    snapshot.version = version;
    return snapshot;
}

QByteArray legacyFile(const QByteArray &version)
{
    return R"({"version": )" + version +
           R"(, "captureDraft": "draft", "editingDrafts": {}, "notes": [
        {"id": "8C5B6F0E-3C1D-4E0A-9C55-000000000002", "body": "two", "createdAt": 1, "updatedAt": 2},
        {"id": "8C5B6F0E-3C1D-4E0A-9C55-000000000001", "body": "one", "createdAt": 1, "updatedAt": 2}]})";
}

/// Three notes with a draft of the first, all of it loaded.
NoteSnapshot threeNotes()
{
    return snapshotOf({numberedNote(1, u"a"_s), numberedNote(2, u"b"_s), numberedNote(3, u"c"_s)},
                      u"capture"_s, {{canonicalText(numberedId(1)), u"edit"_s}});
}

/// What tells whether anything touched a file or folder: which one it is and when it changed.
struct Trace {
    ino_t inode;
    std::int64_t changed;

    friend bool operator==(const Trace &, const Trace &) = default;
};

QMap<QByteArray, Trace> tracesBelow(const DataFolder &data, const char *folder = "Markdown")
{
    QMap<QByteArray, Trace> traces;
    for (const auto &entry : fs::recursive_directory_iterator(data.path(folder))) {
        const std::string name = entry.path().lexically_relative(data.path()).native();
        const struct stat found = data.status(name);
        traces[QByteArray::fromStdString(name)] = {
            found.st_ino,
            found.st_ctim.tv_sec * std::int64_t{1'000'000'000} + found.st_ctim.tv_nsec};
    }
    return traces;
}

/// What is another one than before, came or went.
QStringList touched(const QMap<QByteArray, Trace> &before, const QMap<QByteArray, Trace> &after)
{
    QStringList names;
    for (auto trace = before.begin(); trace != before.end(); ++trace) {
        if (after.value(trace.key(), Trace{}) != trace.value())
            names.append(QFile::decodeName(trace.key()));
    }
    for (auto trace = after.begin(); trace != after.end(); ++trace) {
        if (!before.contains(trace.key()))
            names.append(QFile::decodeName(trace.key()));
    }
    names.sort();
    return names;
}

ino_t inode(const DataFolder &data, std::string_view name)
{
    return data.status(name).st_ino;
}

QStringList bodies(const NoteSnapshot &snapshot)
{
    QStringList bodies;
    for (const Note &note : snapshot.notes)
        bodies.append(note.body);
    return bodies;
}

/// Also when that cannot be told, since a part of the folder is gone.
bool isChangedOutside(LocalNoteRepository &repository)
{
    bool isChanged = false;
    const auto error = thrown<FileError>([&] { isChanged = repository.isChangedOutside(); });
    return isChanged || error;
}

} // namespace

class LocalNoteRepositoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesTheFolderOfTheNotesBeforeItExists();
    void livesInTheUsersDataFolder();
    void findsTheHomeFolderWithoutTheEnvironment();

    void findsNothingAndMakesNothing();
    void makesTheFolderWithTheFirstSave();
    void writesEachFileInItsForm();
    void makesFilesForTheUserAlone();
    void closesToOthersWhatItWritesAndNothingElse();

    void readsNotesInTheOrderOfTheirNames();
    void readsAnExtensionOfEitherCase();
    void readsADraftUnderItsCanonicalText();
    void readsTheCaptureDraftWithItsByteOrderMark();
    void hasNoCaptureDraftWithoutItsFile();
    void ignoresFilesOfOtherKinds();
    void refusesToRead_data();
    void refusesToRead();
    void failsToReadWhatIsMissing_data();
    void failsToReadWhatIsMissing();

    void migratesEveryPartOfTheOlderFile();
    void migratesTheOlderFileOnce();
    void seesAChangeFromOutsideAfterAMigration();
    void leavesAnOlderFileOfAnotherVersionAlone();
    void leavesAnOlderFileThatItCannotReadAlone();
    void leavesAnOlderFileWithBadNotesAlone();

    void replacesAFolderThatItNeverLoaded();
    void removesTheFilesOfWhatIsGone();
    void keepsFilesOfOtherPrograms();
    void keepsUnchangedFilesAsTheyAre();
    void touchesNothingWhenNothingChanged();
    void touchesOneFileForADraft();
    void touchesOneFileForANote_data();
    void touchesOneFileForANote();
    void exchangesOnlyTheDraftsForTwoOfThem();
    void exchangesTheFolderForANoteAndItsDraft();
    void tidiesUpInSlices();
    void savesWhileFilesOfOtherProgramsComeAndGo_data();
    void savesWhileFilesOfOtherProgramsComeAndGo();
    void writesAKeyOfLowerCaseAsItStands();
    void renamesAFileOfLowerCaseOnceItChanges();
    void refusesToWrite_data();
    void refusesToWrite();
    void refusesATextThatIsNotUnicode();
    void refusesATextThatItCouldNotReadAgain();

    void seesAChangeFromOutside_data();
    void seesAChangeFromOutside();
    void seesAFileThatWasMoved_data();
    void seesAFileThatWasMoved();
    void seesAChangeFromOutsideWhenNothingIsToBeWritten();
    void seesAFolderThatAppeared();
    void goesOnRefusingUntilItLoadsAgain();
    void overlooksFilesOfOtherKindsFromOutside();
    void refusesWhileThereIsARecoveryCopy();
    void staysUnloadedWhenLoadingFails();
    void remembersWhatItKnewWhenLoadingAgainFails();
};

void LocalNoteRepositoryTest::namesTheFolderOfTheNotesBeforeItExists()
{
    const DataFolder data;

    const auto folder = LocalNoteRepository(data.fileURL()).notesFolderURL();

    QVERIFY(folder.has_value());
    QCOMPARE(folder->toLocalFile(), QString::fromStdString(data.path("Markdown/Notes").native()));
    QVERIFY(!fs::exists(data.path()));
}

void LocalNoteRepositoryTest::findsTheHomeFolderWithoutTheEnvironment()
{
    const QByteArray given = qgetenv("XDG_DATA_HOME");
    const QByteArray home = qgetenv("HOME");
    const passwd *user = ::getpwuid(::getuid());
    if (!user || !fs::path(user->pw_dir).is_absolute())
        QSKIP("The user has no home folder.");
    const fs::path expected = fs::path(user->pw_dir) / ".local/share/Penwick/notes.json";
    qunsetenv("XDG_DATA_HOME");

    qunsetenv("HOME");
    const fs::path withoutHome = LocalNoteRepository::defaultFileURL();
    qputenv("HOME", "");
    const fs::path withEmptyHome = LocalNoteRepository::defaultFileURL();
    qputenv("HOME", "relative");
    const fs::path withRelativeHome = LocalNoteRepository::defaultFileURL();
    qputenv("HOME", home);
    qputenv("XDG_DATA_HOME", given);

    QCOMPARE(withoutHome, expected);
    QCOMPARE(withEmptyHome, expected);
    QCOMPARE(withRelativeHome, expected);
}

void LocalNoteRepositoryTest::livesInTheUsersDataFolder()
{
    const QByteArray given = qgetenv("XDG_DATA_HOME");
    const fs::path home(qgetenv("HOME").toStdString());

    qputenv("XDG_DATA_HOME", "/data/of/mine");
    QCOMPARE(LocalNoteRepository::defaultFileURL(), fs::path("/data/of/mine/Penwick/notes.json"));
    // By the rules for these folders a relative path does not count.
    qputenv("XDG_DATA_HOME", "of/mine");
    QCOMPARE(LocalNoteRepository::defaultFileURL(), home / ".local/share/Penwick/notes.json");
    qputenv("XDG_DATA_HOME", "");
    QCOMPARE(LocalNoteRepository::defaultFileURL(), home / ".local/share/Penwick/notes.json");

    // A path is bytes, and need not be a text.
    qputenv("HOME", "/home/jos\xe9");
    QCOMPARE(LocalNoteRepository::defaultFileURL(),
             fs::path("/home/jos\xe9/.local/share/Penwick/notes.json"));

    qputenv("HOME", QByteArray::fromStdString(home.native()));
    qputenv("XDG_DATA_HOME", given);
}

void LocalNoteRepositoryTest::findsNothingAndMakesNothing()
{
    const DataFolder data;

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), NoteSnapshot());

    QVERIFY(!fs::exists(data.path()));
}

void LocalNoteRepositoryTest::makesTheFolderWithTheFirstSave()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    QCOMPARE(repository.load(), NoteSnapshot());

    repository.save({});

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/.format", "f" + marker},
                                                  {"Markdown/Notes", "d"},
                                                  {"Markdown/Drafts", "d"},
                                                  {"Markdown/Drafts/capture.md", "f"}}));
}

void LocalNoteRepositoryTest::writesEachFileInItsForm()
{
    const DataFolder data;
    const Note note = numberedNote(1, u"body 羽"_s);

    LocalNoteRepository(data.fileURL())
        .save(snapshotOf({note}, u"capture\n"_s, {{canonicalText(note.id), u"edit"_s}}));

    QCOMPARE(data.read(noteFile(note.id)), noteBytes(note));
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "capture\n");
    QCOMPARE(data.read(draftFile(note.id)), "edit");
}

void LocalNoteRepositoryTest::makesFilesForTheUserAlone()
{
    const DataFolder data;
    const Note note = numberedNote(1, u"secret"_s);

    LocalNoteRepository(data.fileURL()).save(snapshotOf({note}));

    QCOMPARE(data.status(noteFile(note.id)).st_mode & 07777, 0600U);
    QCOMPARE(data.status("Markdown/.format").st_mode & 07777, 0600U);
    QCOMPARE(data.status("Markdown/Notes").st_mode & 07777, 0700U);
}

void LocalNoteRepositoryTest::closesToOthersWhatItWritesAndNothingElse()
{
    const DataFolder data;
    const Note changed = numberedNote(1, u"a"_s);
    const Note same = numberedNote(2, u"b"_s);
    writeFolder(data, {changed, same});
    data.write("Markdown/Notes/photo.jpg", "of another program");
    data.write("Markdown/shared/list.txt", "of another program");
    for (const auto &entry : fs::recursive_directory_iterator(data.path()))
        fs::permissions(entry.path(), fs::perms(entry.is_directory() ? 0755 : 0644));
    fs::permissions(data.path(), fs::perms(0755));
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = repository.load();

    snapshot.notes[0].body = u"changed"_s;
    repository.save(snapshot);

    const auto mode = [&](std::string_view path) { return data.status(path).st_mode & 07777; };
    QCOMPARE(mode("Markdown"), 0700U);
    QCOMPARE(mode("Markdown/Notes"), 0700U);
    QCOMPARE(mode("Markdown/Drafts"), 0700U);
    QCOMPARE(mode(noteFile(changed.id)), 0600U);
    QCOMPARE(mode(""), 0755U);
    QCOMPARE(mode("Markdown/shared"), 0755U);
    QCOMPARE(mode("Markdown/shared/list.txt"), 0644U);
    QCOMPARE(mode("Markdown/Notes/photo.jpg"), 0644U);
    QCOMPARE(mode(noteFile(same.id)), 0644U);
}

void LocalNoteRepositoryTest::readsNotesInTheOrderOfTheirNames()
{
    const DataFolder data;
    writeFolder(data, {numberedNote(3, u"c"_s), numberedNote(1, u"a"_s), numberedNote(2, u"b"_s)});

    QCOMPARE(bodies(LocalNoteRepository(data.fileURL()).load()),
             (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

void LocalNoteRepositoryTest::readsAnExtensionOfEitherCase()
{
    const DataFolder data;
    writeFolder(data, {});
    const Note note = numberedNote(1, u"loud"_s);
    fs::remove(data.path("Markdown/Drafts/capture.md"));
    data.write("Markdown/Drafts/capture.MD", "draft");
    data.write("Markdown/Notes/" + canonicalText(note.id).toStdString() + ".Md", noteBytes(note));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshotOf({note}, u"draft"_s));
}

void LocalNoteRepositoryTest::readsADraftUnderItsCanonicalText()
{
    const DataFolder data;
    const Note note = numberedNote(1, u"a"_s);
    writeFolder(data, {note});
    const QString key = canonicalText(note.id);
    data.write("Markdown/Drafts/" + key.toLower().toStdString() + ".md", "edit");

    QCOMPARE(LocalNoteRepository(data.fileURL()).load().editingDrafts,
             (QMap<QString, QString>{{key, u"edit"_s}}));
}

void LocalNoteRepositoryTest::readsTheCaptureDraftWithItsByteOrderMark()
{
    const DataFolder data;
    writeFolder(data, {}, "\xEF\xBB\xBFtext\r\n");

    QCOMPARE(LocalNoteRepository(data.fileURL()).load().captureDraft, u"\uFEFFtext\r\n"_s);
}

void LocalNoteRepositoryTest::hasNoCaptureDraftWithoutItsFile()
{
    const DataFolder data;
    writeFolder(data, {numberedNote(1, u"a"_s)}, "draft");
    fs::remove(data.path("Markdown/Drafts/capture.md"));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshotOf({numberedNote(1, u"a"_s)}));
}

void LocalNoteRepositoryTest::ignoresFilesOfOtherKinds()
{
    const DataFolder data;
    writeFolder(data, {numberedNote(1, u"a"_s)});
    data.write("Markdown/Notes/readme.txt", "x");
    data.write("Markdown/Notes/.md", "a hidden file without an extension");
    data.write("Markdown/Notes/md", "x");
    data.write("Markdown/Notes/more.md.bak", "x");
    data.write("Markdown/Notes/folder/inside.md", "x");
    data.write("Markdown/outside.md", "x");
    QCOMPARE(::mkfifo(data.path("Markdown/Notes/pipe").c_str(), 0600), 0);

    QCOMPARE(bodies(LocalNoteRepository(data.fileURL()).load()), QStringList(u"a"_s));
}

void LocalNoteRepositoryTest::refusesToRead_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray one = QByteArray::fromStdString(noteFile(numberedId(1)));
    const QByteArray bytes = noteBytes(numberedNote(1, u"a"_s));
    QTest::newRow("another format")
        << QByteArray("Markdown/.format") << QByteArray("Quillmark Markdown 2\n");
    QTest::newRow("a format without its line end")
        << QByteArray("Markdown/.format") << QByteArray("Quillmark Markdown 1");
    QTest::newRow("a note without a header") << one << QByteArray("text");
    QTest::newRow("a note with a byte order mark") << one << "\xEF\xBB\xBF" + bytes;
    QTest::newRow("a note of another identifier") << one << noteBytes(numberedNote(2, u"a"_s));
    QTest::newRow("a note with another name") << QByteArray("Markdown/Notes/idea.md") << bytes;
    QTest::newRow("a hidden note") << QByteArray("Markdown/Notes/.idea.md") << bytes;
    QTest::newRow("a name that is not UTF-8") << QByteArray("Markdown/Notes/\xff.md") << bytes;
    QTest::newRow("a note twice") << QByteArray(one).toLower().replace("markdown/notes",
                                                                       "Markdown/Notes")
                                  << bytes;
    QTest::newRow("a draft with another name")
        << QByteArray("Markdown/Drafts/idea.md") << QByteArray();
    QTest::newRow("a draft named Capture")
        << QByteArray("Markdown/Drafts/Capture.md") << QByteArray();
    QTest::newRow("a draft without a note")
        << QByteArray::fromStdString(draftFile(numberedId(9))) << QByteArray();
}

void LocalNoteRepositoryTest::refusesToRead()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, bytes);
    const DataFolder data;
    writeFolder(data, {numberedNote(1, u"a"_s)});
    data.write(name.toStdString(), bytes);
    const auto before = data.content();

    const auto error =
        refusal([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QCOMPARE(error, RepositoryError::invalidMarkdown());
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::failsToReadWhatIsMissing_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("the format") << QByteArray("Markdown/.format");
    QTest::newRow("the notes") << QByteArray("Markdown/Notes");
}

void LocalNoteRepositoryTest::failsToReadWhatIsMissing()
{
    QFETCH(QByteArray, name);
    const DataFolder data;
    writeFolder(data, {});
    fs::remove_all(data.path(name.toStdString()));

    const auto error =
        thrown<FileError>([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->systemError(), ENOENT);
    QCOMPARE(error->path(), data.path(name.toStdString()));
}

void LocalNoteRepositoryTest::replacesAFolderThatItNeverLoaded()
{
    const DataFolder data;
    writeFolder(data, {numberedNote(1, u"old"_s), numberedNote(2, u"gone"_s)});
    const NoteSnapshot snapshot = snapshotOf({numberedNote(1, u"new"_s)}, u"draft"_s);

    LocalNoteRepository(data.fileURL()).save(snapshot);

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshot);
}

void LocalNoteRepositoryTest::migratesEveryPartOfTheOlderFile()
{
    const DataFolder data;
    const Note note = numberedNote(1, u"body\n"_s);
    const QByteArray id = canonicalText(note.id).toLatin1();
    data.write("notes.json", R"({"version": 1, "captureDraft": "typed", "editingDrafts": {")" + id +
                                 R"(": "edited"}, "notes": [{"id": ")" + id +
                                 R"(", "body": "body\n", "createdAt": 760000001.25,)"
                                 R"( "updatedAt": 760000001.25}]})");

    const NoteSnapshot migrated = LocalNoteRepository(data.fileURL()).load();

    QCOMPARE(migrated, snapshotOf({note}, u"typed"_s, {{canonicalText(note.id), u"edited"_s}}));
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), migrated);
    QCOMPARE(data.read(draftFile(note.id)), "edited");
}

void LocalNoteRepositoryTest::migratesTheOlderFileOnce()
{
    const DataFolder data;
    data.write("notes.json", legacyFile("1"));
    LocalNoteRepository repository(data.fileURL());

    QCOMPARE(bodies(repository.load()), (QStringList{u"two"_s, u"one"_s}));

    QCOMPARE(data.read("notes.json"), legacyFile("1"));
    data.write("notes.json", "no longer looked at");
    QCOMPARE(bodies(repository.load()), (QStringList{u"one"_s, u"two"_s}));
    repository.save(withCapture(u"works"_s));
    QCOMPARE(data.read("notes.json"), "no longer looked at");
}

void LocalNoteRepositoryTest::seesAChangeFromOutsideAfterAMigration()
{
    const DataFolder data;
    data.write("notes.json", legacyFile("1"));
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = repository.load();
    data.write("Markdown/Drafts/capture.md", "theirs");

    snapshot.captureDraft = u"ours"_s;

    QCOMPARE(refusal([&] { repository.save(snapshot); }), RepositoryError::externalChange());
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "theirs");
}

void LocalNoteRepositoryTest::leavesAnOlderFileOfAnotherVersionAlone()
{
    const DataFolder data;
    data.write("notes.json", legacyFile("2"));
    const auto before = data.content();

    const auto error =
        refusal([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QCOMPARE(error, RepositoryError::unsupportedVersion(2));
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::leavesAnOlderFileThatItCannotReadAlone()
{
    const DataFolder data;
    data.write("notes.json", R"({"version": 1, "notes": [], "captureDraft": ""})");
    const auto before = data.content();

    QVERIFY(thrown<JsonError>([&] {
                static_cast<void>(LocalNoteRepository(data.fileURL()).load());
            }).has_value());

    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::leavesAnOlderFileWithBadNotesAlone()
{
    const DataFolder data;
    data.write("notes.json", legacyFile("1").replace("000000000002", "000000000001"));
    const auto before = data.content();

    const auto error =
        refusal([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QCOMPARE(error, RepositoryError::invalidMarkdown());
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::removesTheFilesOfWhatIsGone()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    const Note gone = numberedNote(1, u"a"_s);
    const Note kept = numberedNote(2, u"b"_s);
    repository.save(snapshotOf({gone, kept}, {},
                               {{canonicalText(gone.id), u""_s}, {canonicalText(kept.id), u""_s}}));

    repository.save(snapshotOf({kept}));

    QVERIFY(!data.holds(noteFile(gone.id)));
    QVERIFY(!data.holds(draftFile(gone.id)));
    QVERIFY(!data.holds(draftFile(kept.id)));
    QVERIFY(data.holds(noteFile(kept.id)));
}

void LocalNoteRepositoryTest::keepsFilesOfOtherPrograms()
{
    const DataFolder data;
    writeFolder(data, {numberedNote(1, u"a"_s)});
    data.write("Markdown/outside.md", "1");
    data.write("Markdown/Notes/.obsidian/app.json", "2");
    data.write("Markdown/Notes/picture \xff.png", "3");
    data.write("Markdown/Drafts/capture.md.swp", "4");
    fs::create_symlink("/etc/hostname", data.path("Markdown/Notes/link"));
    const std::string note = noteFile(numberedId(1));
    data.write("Markdown/Old/" + note.substr(note.find('/') + 1), "of no note of ours");
    auto expected = data.content();
    expected["Markdown/Drafts/capture.md"] = "fnew";
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = repository.load();

    snapshot.captureDraft = u"new"_s;
    repository.save(snapshot);
    QCOMPARE(data.content(), expected);

    snapshot.notes[0].body = u"b"_s;
    snapshot.captureDraft = u"newer"_s;
    repository.save(snapshot);
    tidyUp(repository);

    expected["Markdown/Drafts/capture.md"] = "fnewer";
    expected[QByteArray::fromStdString(note)] = "f" + noteBytes(snapshot.notes[0]);
    QCOMPARE(data.content(), expected);
}

void LocalNoteRepositoryTest::keepsUnchangedFilesAsTheyAre()
{
    const DataFolder data;
    // Read as it stands, and not what the program itself would write.
    const Note kept = numberedNote(1, u"kept"_s);
    const Note changed = numberedNote(2, u"changed"_s);
    writeFolder(data, {kept, changed});
    const struct stat before = data.status(noteFile(kept.id));
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = repository.load();

    snapshot.notes[1].body = u"new"_s;
    repository.save(snapshot);
    snapshot.captureDraft = u"new"_s;
    repository.save(snapshot);

    const struct stat after = data.status(noteFile(kept.id));
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    QVERIFY(data.read(noteFile(changed.id)).endsWith("\n---\nnew"));
}

void LocalNoteRepositoryTest::touchesNothingWhenNothingChanged()
{
    const DataFolder data;
    writeFolder(data, {numberedNote(1, u"a"_s)});
    LocalNoteRepository repository(data.fileURL());
    const NoteSnapshot snapshot = repository.load();
    const struct stat before = data.status("Markdown");

    repository.save(snapshot);

    QCOMPARE(data.status("Markdown").st_ino, before.st_ino);
}

void LocalNoteRepositoryTest::touchesOneFileForADraft()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = threeNotes();
    repository.save(snapshot);
    data.write("Markdown/photo.jpg", "of another program");
    const auto before = tracesBelow(data);

    snapshot.captureDraft = u"typed"_s;
    repository.save(snapshot);
    tidyUp(repository);

    // A file that is replaced is a change of its folder, which stays the same one.
    QCOMPARE(touched(before, tracesBelow(data)),
             (QStringList{u"Markdown/Drafts"_s, u"Markdown/Drafts/capture.md"_s}));
    QCOMPARE(inode(data, "Markdown/Drafts"), before["Markdown/Drafts"].inode);
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "typed");
    QCOMPARE(data.count(".quillmark-"), 0);
}

void LocalNoteRepositoryTest::touchesOneFileForANote_data()
{
    QTest::addColumn<NoteSnapshot>("next");
    QTest::addColumn<int>("number");

    NoteSnapshot changed = threeNotes();
    changed.notes[1].body = u"changed"_s;
    NoteSnapshot added = threeNotes();
    added.notes.append(numberedNote(4, u"d"_s));
    NoteSnapshot removed = threeNotes();
    removed.notes.removeAt(2);
    QTest::newRow("changed") << changed << 2;
    QTest::newRow("added") << added << 4;
    QTest::newRow("removed") << removed << 3;
}

void LocalNoteRepositoryTest::touchesOneFileForANote()
{
    QFETCH(const NoteSnapshot, next);
    QFETCH(const int, number);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(threeNotes());
    const auto before = tracesBelow(data);
    const ino_t markdown = inode(data, "Markdown");

    repository.save(next);
    tidyUp(repository);

    QCOMPARE(
        touched(before, tracesBelow(data)),
        (QStringList{u"Markdown/Notes"_s, QString::fromStdString(noteFile(numberedId(number)))}));
    QCOMPARE(inode(data, "Markdown"), markdown);
    QCOMPARE(inode(data, "Markdown/Notes"), before["Markdown/Notes"].inode);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), next);
    QCOMPARE(data.count(".quillmark-"), 0);
}

void LocalNoteRepositoryTest::exchangesOnlyTheDraftsForTwoOfThem()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = threeNotes();
    repository.save(snapshot);
    data.write("Markdown/Drafts/list.txt", "of another program");
    const auto notes = tracesBelow(data, "Markdown/Notes");
    const ino_t markdown = inode(data, "Markdown");
    const ino_t notesFolder = inode(data, "Markdown/Notes");
    const ino_t drafts = inode(data, "Markdown/Drafts");
    const ino_t other = inode(data, "Markdown/Drafts/list.txt");

    snapshot.captureDraft = u"typed"_s;
    snapshot.editingDrafts[canonicalText(numberedId(1))] = u"typed"_s;
    repository.save(snapshot);
    tidyUp(repository);

    QCOMPARE(touched(notes, tracesBelow(data, "Markdown/Notes")), QStringList());
    QCOMPARE(inode(data, "Markdown"), markdown);
    QCOMPARE(inode(data, "Markdown/Notes"), notesFolder);
    QVERIFY(inode(data, "Markdown/Drafts") != drafts);
    QCOMPARE(inode(data, "Markdown/Drafts/list.txt"), other);
    QCOMPARE(data.status("Markdown/Drafts").st_mode & 07777, 0700U);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshot);
    QCOMPARE(data.count(".quillmark-"), 0);
}

void LocalNoteRepositoryTest::exchangesTheFolderForANoteAndItsDraft()
{
    // As when what was captured becomes a note.
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = threeNotes();
    repository.save(snapshot);
    const ino_t markdown = inode(data, "Markdown");
    const ino_t other = inode(data, noteFile(numberedId(1)));

    snapshot.notes.append(numberedNote(4, snapshot.captureDraft));
    snapshot.captureDraft.clear();
    repository.save(snapshot);

    QVERIFY(inode(data, "Markdown") != markdown);
    QCOMPARE(inode(data, noteFile(numberedId(1))), other);
    QCOMPARE(data.count(".quillmark-stage-"), 1);
    tidyUp(repository);
    QCOMPARE(data.count(".quillmark-"), 0);
    QCOMPARE(data.status(noteFile(numberedId(1))).st_nlink, 1U);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshot);
}

void LocalNoteRepositoryTest::tidiesUpInSlices()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot;
    for (int i = 0; i < 100; ++i)
        snapshot.notes.append(numberedNote(i, u"a"_s));
    repository.save(snapshot);
    QVERIFY(!repository.tidy(std::chrono::hours(1)));
    snapshot.notes[0].body = u"b"_s;
    snapshot.captureDraft = u"b"_s;
    repository.save(snapshot);

    int slices = 0;
    while (data.count(".quillmark-") != 0 && slices < 200) {
        QCOMPARE(repository.tidy(std::chrono::milliseconds(0)), std::chrono::milliseconds(0));
        ++slices;
    }
    tidyUp(repository);

    QVERIFY2(slices >= 4 && slices < 200, qPrintable(QString::number(slices)));
    QVERIFY(!repository.tidy(std::chrono::hours(1)));
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), snapshot);
}

void LocalNoteRepositoryTest::savesWhileFilesOfOtherProgramsComeAndGo_data()
{
    QTest::addColumn<NoteSnapshot>("next");

    NoteSnapshot note = threeNotes();
    note.notes[1].body = u"changed"_s;
    NoteSnapshot drafts = threeNotes();
    drafts.captureDraft = u"changed"_s;
    drafts.editingDrafts.clear();
    NoteSnapshot all = drafts;
    all.notes.removeLast();
    QTest::newRow("one file") << note;
    QTest::newRow("the drafts") << drafts;
    QTest::newRow("the whole folder") << all;
}

void LocalNoteRepositoryTest::savesWhileFilesOfOtherProgramsComeAndGo()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder data;
    RacingDisk disk;
    LocalNoteRepository repository(data.fileURL(), disk);
    repository.save(threeNotes());
    const std::array<std::string, 3> folders{"Markdown/", "Markdown/Notes/", "Markdown/Drafts/"};
    for (const std::string &folder : folders)
        data.write(folder + "passing", "theirs");
    disk.beforeNextSwap([&] {
        for (const std::string &folder : folders) {
            fs::remove(data.path(folder + "passing"));
            data.write(folder + "coming", "theirs");
        }
    });

    repository.save(next);
    tidyUp(repository);

    for (const std::string &folder : folders) {
        QVERIFY(!data.holds(folder + "passing"));
        QCOMPARE(data.read(folder + "coming"), "theirs");
    }
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), next);
    QCOMPARE(data.count(".quillmark-"), 0);
}

void LocalNoteRepositoryTest::writesAKeyOfLowerCaseAsItStands()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    const Note note = numberedNote(1, u"a"_s);
    const QString key = canonicalText(note.id).toLower();

    repository.save(snapshotOf({note}, {}, {{key, u"edit"_s}}));

    QCOMPARE(data.read("Markdown/Drafts/" + key.toStdString() + ".md"), "edit");
}

void LocalNoteRepositoryTest::renamesAFileOfLowerCaseOnceItChanges()
{
    const DataFolder data;
    writeFolder(data, {});
    const Note note = numberedNote(1, u"a"_s);
    const std::string lower =
        "Markdown/Notes/" + canonicalText(note.id).toLower().toStdString() + ".MD";
    data.write(lower, noteBytes(note));
    LocalNoteRepository repository(data.fileURL());

    Note changed = note;
    changed.body = u"b"_s;

    repository.save(repository.load());
    QVERIFY(data.holds(lower));
    QVERIFY(!data.holds(noteFile(note.id)));

    repository.save(snapshotOf({changed}));
    QVERIFY(!data.holds(lower));
    QCOMPARE(data.read(noteFile(note.id)), noteBytes(changed));
}

void LocalNoteRepositoryTest::refusesToWrite_data()
{
    QTest::addColumn<NoteSnapshot>("snapshot");
    QTest::addColumn<RepositoryError>("expected");

    const Note note = numberedNote(1, u"a"_s);
    const QString key = canonicalText(note.id);
    Note timeless = note;
    timeless.updatedAt.secondsSince2001 = std::numeric_limits<double>::quiet_NaN();
    const RepositoryError invalid = RepositoryError::invalidMarkdown();

    QTest::newRow("version 2") << ofVersion(2) << RepositoryError::unsupportedVersion(2);
    QTest::newRow("version -1") << ofVersion(-1) << RepositoryError::unsupportedVersion(-1);
    QTest::newRow("an identifier twice") << snapshotOf({note, note}) << invalid;
    QTest::newRow("a time that no text can carry") << snapshotOf({timeless}) << invalid;
    QTest::newRow("a draft of no note") << snapshotOf({}, {}, {{key, u""_s}}) << invalid;
    QTest::newRow("a draft whose key is no identifier")
        << snapshotOf({note}, {}, {{u"capture"_s, u""_s}}) << invalid;
    QTest::newRow("a draft whose key would lead elsewhere")
        << snapshotOf({note}, {}, {{u"../Notes/x"_s, u""_s}}) << invalid;
    QTest::newRow("two drafts of one note")
        << snapshotOf({note}, {}, {{key, u"1"_s}, {key.toLower(), u"2"_s}}) << invalid;
}

void LocalNoteRepositoryTest::refusesToWrite()
{
    QFETCH(NoteSnapshot, snapshot);
    QFETCH(RepositoryError, expected);
    const DataFolder data;
    writeFolder(data, {numberedNote(5, u"old"_s)}, "old");
    const auto before = data.content();

    QCOMPARE(refusal([&] { LocalNoteRepository(data.fileURL()).save(snapshot); }), expected);

    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::refusesATextThatIsNotUnicode()
{
    const DataFolder data;
    writeFolder(data, {}, "old");
    const auto before = data.content();

    const auto error = thrown<FileError>(
        [&] { LocalNoteRepository(data.fileURL()).save(withCapture(u"half "_s + QChar(0xD83E))); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::notUnicode);
    QCOMPARE(error->path(), data.path("Markdown/Drafts/capture.md"));
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::refusesATextThatItCouldNotReadAgain()
{
    const DataFolder data;
    writeFolder(data, {}, "old");
    const auto before = data.content();

    const auto error = thrown<FileError>([&] {
        LocalNoteRepository(data.fileURL())
            .save(withCapture(QString(NoteFolder::largestFile + 1, u'x')));
    });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::tooLarge);
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::seesAChangeFromOutside_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isRemoved");

    const QByteArray note = QByteArray::fromStdString(noteFile(numberedId(1)));
    QTest::newRow("a note edited") << note << false;
    QTest::newRow("a note removed") << note << true;
    QTest::newRow("a file added to the notes") << QByteArray("Markdown/Notes/idea.md") << false;
    QTest::newRow("a file of upper case added") << QByteArray("Markdown/Notes/IDEA.MD") << false;
    QTest::newRow("a hidden file added") << QByteArray("Markdown/Drafts/.idea.md") << false;
    QTest::newRow("the capture draft edited") << QByteArray("Markdown/Drafts/capture.md") << false;
    QTest::newRow("the format edited") << QByteArray("Markdown/.format") << false;
    QTest::newRow("the whole folder removed") << QByteArray("Markdown") << true;
}

void LocalNoteRepositoryTest::seesAChangeFromOutside()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isRemoved);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    NoteSnapshot snapshot = snapshotOf({numberedNote(1, u"a"_s), numberedNote(2, u"b"_s)});
    repository.save(snapshot);

    if (isRemoved)
        fs::remove_all(data.path(name.toStdString()));
    else
        data.write(name.toStdString(), "from outside");
    const auto before = data.content();
    snapshot.notes[0].body = u"new"_s;
    const bool isSeen = isChangedOutside(repository);
    const auto error = refusal([&] { repository.save(snapshot); });

    QVERIFY(isSeen);
    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::seesAFileThatWasMoved_data()
{
    QTest::addColumn<QByteArray>("name");

    // Neither changes the order of the files, nor what is in them.
    const QByteArray note = QByteArray::fromStdString(noteFile(numberedId(1)));
    QTest::newRow("to a name of lower case")
        << QByteArray(note).toLower().replace("markdown/notes", "Markdown/Notes");
    QTest::newRow("to the drafts") << QByteArray(note).replace("Notes", "Drafts");
}

void LocalNoteRepositoryTest::seesAFileThatWasMoved()
{
    QFETCH(QByteArray, name);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({numberedNote(1, u"a"_s)}));

    fs::rename(data.path(noteFile(numberedId(1))), data.path(name.toStdString()));

    QVERIFY(repository.isChangedOutside());
    QCOMPARE(refusal([&] { repository.save(withCapture(u"new"_s)); }),
             RepositoryError::externalChange());
    QVERIFY(data.holds(name.toStdString()));
}

void LocalNoteRepositoryTest::seesAChangeFromOutsideWhenNothingIsToBeWritten()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    const NoteSnapshot snapshot = snapshotOf({numberedNote(1, u"a"_s)});
    repository.save(snapshot);

    data.write(noteFile(numberedId(1)), "from outside");

    QCOMPARE(refusal([&] { repository.save(snapshot); }), RepositoryError::externalChange());
}

void LocalNoteRepositoryTest::seesAFolderThatAppeared()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    QCOMPARE(repository.load(), NoteSnapshot());
    writeFolder(data, {numberedNote(1, u"theirs"_s)});
    const auto before = data.content();

    const auto error = refusal([&] { repository.save(withCapture(u"ours"_s)); });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.content(), before);
}

void LocalNoteRepositoryTest::goesOnRefusingUntilItLoadsAgain()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(withCapture(u"first"_s));
    data.write("Markdown/Drafts/capture.md", "theirs");

    for (int attempt = 0; attempt < 3; ++attempt) {
        QCOMPARE(refusal([&] { repository.save(withCapture(u"ours"_s)); }),
                 RepositoryError::externalChange());
    }
    QCOMPARE(repository.load(), withCapture(u"theirs"_s));
    repository.save(withCapture(u"ours"_s));

    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "ours");
}

void LocalNoteRepositoryTest::overlooksFilesOfOtherKindsFromOutside()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(withCapture(u"first"_s));
    data.write("Markdown/Notes/readme.txt", "theirs");

    QVERIFY(!repository.isChangedOutside());
    repository.save(withCapture(u"second"_s));

    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "second");
    QCOMPARE(data.read("Markdown/Notes/readme.txt"), "theirs");
}

void LocalNoteRepositoryTest::refusesWhileThereIsARecoveryCopy()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(withCapture(u"first"_s));
    data.write(".quillmark-recovery-x/Drafts/capture.md", "old");
    const auto before = data.content();

    QCOMPARE(refusal([&] { static_cast<void>(repository.load()); }),
             RepositoryError::recoveryRequired());
    QCOMPARE(refusal([&] { repository.save(withCapture(u"second"_s)); }),
             RepositoryError::recoveryRequired());
    QCOMPARE(refusal([&] { repository.save(withCapture(u"first"_s)); }),
             RepositoryError::recoveryRequired());
    QCOMPARE(data.content(), before);

    fs::remove_all(data.path(".quillmark-recovery-x"));
    repository.save(withCapture(u"second"_s));
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "second");
}

void LocalNoteRepositoryTest::staysUnloadedWhenLoadingFails()
{
    const DataFolder data;
    writeFolder(data, {}, "theirs");
    data.write("Markdown/.format", "other");
    LocalNoteRepository repository(data.fileURL());
    QCOMPARE(refusal([&] { static_cast<void>(repository.load()); }),
             RepositoryError::invalidMarkdown());

    // Loads again, instead of taking the folder for one that it knows.
    QCOMPARE(refusal([&] { repository.save(withCapture(u"ours"_s)); }),
             RepositoryError::invalidMarkdown());

    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "theirs");
}

void LocalNoteRepositoryTest::remembersWhatItKnewWhenLoadingAgainFails()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    const NoteSnapshot snapshot = snapshotOf({numberedNote(1, u"a"_s), numberedNote(2, u"b"_s)});
    repository.save(snapshot);
    const std::string second = noteFile(numberedId(2));
    const QByteArray remembered = data.read(second);
    data.write(second, "no note");
    QCOMPARE(refusal([&] { static_cast<void>(repository.load()); }),
             RepositoryError::invalidMarkdown());

    // Another content is a change, though it could be read.
    data.write(second, noteBytes(numberedNote(2, u"theirs"_s)));
    NoteSnapshot next = snapshot;
    next.notes[0].body = u"new"_s;
    QCOMPARE(refusal([&] { repository.save(next); }), RepositoryError::externalChange());

    data.write(second, remembered);
    repository.save(next);

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), next);
}

QTEST_GUILESS_MAIN(LocalNoteRepositoryTest)
#include "LocalNoteRepositoryTest.moc"
