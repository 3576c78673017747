// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "FolderChange.h"
#include "Notes.h"
#include "RacingDisk.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

const Note kept = numberedNote(1, u"kept"_s);
const Note old = numberedNote(2, u"old"_s);
const Note ours = numberedNote(2, u"ours"_s);
const Note theirs = numberedNote(3, u"theirs"_s);

NoteSnapshot oldNotes()
{
    return snapshotOf({kept, old}, u"old"_s, {{canonicalText(old.id), u"old"_s}});
}

/// Each kind of save: what it exchanges differs.
void addSaves()
{
    QTest::addColumn<NoteSnapshot>("next");

    const QMap<QString, QString> drafts = oldNotes().editingDrafts;
    QTest::newRow("one file changes") << snapshotOf({kept, ours}, u"old"_s, drafts);
    QTest::newRow("one file is added") << snapshotOf({kept, old, theirs}, u"old"_s, drafts);
    QTest::newRow("one file is removed") << snapshotOf({kept, old}, u"old"_s);
    QTest::newRow("the drafts change") << snapshotOf({kept, old}, u"ours"_s);
    QTest::newRow("the whole folder changes") << snapshotOf({kept, ours}, u"ours"_s, drafts);
}

/// The one entry of the data folder whose name begins with the prefix.
std::string hidden(const DataFolder &data, std::string_view prefix)
{
    std::string found;
    for (const auto &entry : fs::directory_iterator(data.path())) {
        const std::string name = entry.path().filename();
        if (name.starts_with(prefix))
            found = found.empty() ? name : "more than one";
    }
    return found;
}

void replaceFile(const fs::path &path, const QByteArray &bytes)
{
    const fs::path temporary = path.parent_path() / ".temporary";
    std::ofstream(temporary, std::ios::binary).write(bytes.data(), bytes.size());
    fs::rename(temporary, path);
}

/// What stands below any folder.
DataFolder::Content contentOf(const fs::path &folder)
{
    DataFolder::Content content;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        content[QByteArray::fromStdString(entry.path().lexically_relative(folder).native())] =
            entry.is_regular_file()
                ? "f" + QByteArray::fromStdString(std::string(std::istreambuf_iterator(file), {}))
                : "d";
    }
    return content;
}

} // namespace

/// Another program that works in the folder at the worst of all moments: what it wrote or moved is
/// there afterwards, under a name at which somebody looks.
class RacingProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void leavesAFolderAloneThatWasMovedAway_data();
    void leavesAFolderAloneThatWasMovedAway();
    void leavesASectionAloneThatWasMovedAway_data();
    void leavesASectionAloneThatWasMovedAway();
    void leavesAFolderAloneThatBecameALink_data();
    void leavesAFolderAloneThatBecameALink();
    void leavesAFirstFolderAloneThatTookItsPlace();
    void refusesWhatChangesRightAfterTheSwap_data();
    void refusesWhatChangesRightAfterTheSwap();
    void keepsWhatWasWrittenIntoANewFolderThatIsTakenBack();
    void keepsAFolderThatTookThePlaceOfTheNewOne();
    void keepsAFileThatReplacesAnOldOne();
    void keepsAFileThatIsAddedToTheOldFolder();
    void keepsWhatIsWrittenIntoAnOldFile();
    void keepsWhatComesBeforeTheOldFolderIsRemoved();
    void keepsAnOldFolderThatIsMovedAway();

private:
    [[nodiscard]] std::optional<RepositoryError> refusalOfSave(const NoteSnapshot &next);

    std::optional<DataFolder> m_data;
    std::optional<RacingDisk> m_disk;
    std::optional<LocalNoteRepository> m_repository;
};

void RacingProgramTest::init()
{
    m_repository.reset();
    m_data.emplace();
    m_disk.emplace();
    m_repository.emplace(m_data->fileURL(), *m_disk);
    m_repository->save(oldNotes());
}

std::optional<RepositoryError> RacingProgramTest::refusalOfSave(const NoteSnapshot &next)
{
    return refusal([&] {
        m_repository->save(next);
        tidyUp(*m_repository);
    });
}

void RacingProgramTest::leavesAFolderAloneThatWasMovedAway_data()
{
    addSaves();
}

void RacingProgramTest::leavesAFolderAloneThatWasMovedAway()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    const auto before = contentOf(data.path("Markdown"));
    DataFolder::Content copied;
    m_disk->beforeNextSwap([&] {
        fs::rename(data.path("Markdown"), away);
        fs::copy(away, data.path("Markdown"), fs::copy_options::recursive);
        data.write(noteFile(theirs.id), noteBytes(theirs));
        copied = contentOf(data.path("Markdown"));
    });

    const auto error = refusalOfSave(next);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(contentOf(away), before);
    QCOMPARE(contentOf(data.path("Markdown")), copied);
    QCOMPARE(data.count(""), 1);
}

void RacingProgramTest::leavesASectionAloneThatWasMovedAway_data()
{
    addSaves();
}

void RacingProgramTest::leavesASectionAloneThatWasMovedAway()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    fs::create_directory(away);
    const auto before = contentOf(data.path("Markdown"));
    DataFolder::Content copied;
    m_disk->beforeNextSwap([&] {
        for (const char *name : {"Notes", "Drafts"}) {
            const fs::path section = data.path("Markdown") / name;
            fs::rename(section, away / name);
            fs::copy(away / name, section, fs::copy_options::recursive);
        }
        fs::copy(data.path("Markdown/.format"), away / ".format");
        data.write(noteFile(theirs.id), noteBytes(theirs));
        copied = contentOf(data.path("Markdown"));
    });

    const auto error = refusalOfSave(next);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(contentOf(away), before);
    QCOMPARE(contentOf(data.path("Markdown")), copied);
    QCOMPARE(data.count(""), 1);
}

void RacingProgramTest::leavesAFolderAloneThatBecameALink_data()
{
    addSaves();
}

void RacingProgramTest::leavesAFolderAloneThatBecameALink()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    const auto before = contentOf(data.path("Markdown"));
    m_disk->beforeNextSwap([&] {
        fs::rename(data.path("Markdown"), away);
        fs::create_directory_symlink(away, data.path("Markdown"));
    });

    const auto error = thrown<FileError>([&] { m_repository->save(next); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::notFolder);
    QCOMPARE(contentOf(away), before);
    QCOMPARE(fs::read_symlink(data.path("Markdown")), away);
    QCOMPARE(data.count(""), 1);
}

void RacingProgramTest::leavesAFirstFolderAloneThatTookItsPlace()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL(), *m_disk);
    QCOMPARE(repository.load(), NoteSnapshot());
    DataFolder::Content made;
    m_disk->beforeNextSwap([&] {
        fs::copy(m_data->path("Markdown"), data.path("Markdown"), fs::copy_options::recursive);
        made = contentOf(data.path("Markdown"));
    });

    const auto error = refusal([&] { repository.save(snapshotOf({ours})); });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(contentOf(data.path("Markdown")), made);
    QCOMPARE(data.count(""), 1);
}

void RacingProgramTest::refusesWhatChangesRightAfterTheSwap_data()
{
    QTest::addColumn<NoteSnapshot>("next");

    QTest::newRow("one file") << snapshotOf({kept, ours}, u"old"_s, oldNotes().editingDrafts);
    QTest::newRow("the whole folder") << snapshotOf({kept, ours}, u"ours"_s);
}

void RacingProgramTest::refusesWhatChangesRightAfterTheSwap()
{
    QFETCH(const NoteSnapshot, next);
    const DataFolder &data = *m_data;
    std::ofstream editor(data.path(noteFile(old.id)), std::ios::app);
    auto expected = data.content();
    const QByteArray name = QByteArray::fromStdString(noteFile(old.id));
    expected[name] += " and theirs";
    m_disk->afterNextSwap([&] { editor << " and theirs" << std::flush; });

    const auto error = refusalOfSave(next);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.content(), expected);
}

void RacingProgramTest::keepsWhatWasWrittenIntoANewFolderThatIsTakenBack()
{
    const DataFolder &data = *m_data;
    std::ofstream editor(data.path(noteFile(old.id)), std::ios::app);
    m_disk->afterNextSwap([&] {
        data.write(noteFile(theirs.id), noteBytes(theirs));
        editor << " and theirs" << std::flush;
    });

    const auto error = refusalOfSave(snapshotOf({kept, ours}, u"ours"_s));

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(data.read(noteFile(old.id)), noteBytes(old) + " and theirs");
    const std::string copy = hidden(data, ".quillmark-recovery-");
    const auto inCopy = [&](const std::string &file) {
        return data.read(copy + file.substr(std::string_view("Markdown").size()));
    };
    QCOMPARE(inCopy(noteFile(theirs.id)), noteBytes(theirs));
    QCOMPARE(inCopy(noteFile(ours.id)), noteBytes(ours));
    QCOMPARE(data.count(".quillmark-"), 1);
}

void RacingProgramTest::keepsAFolderThatTookThePlaceOfTheNewOne()
{
    const DataFolder &data = *m_data;
    std::ofstream editor(data.path(noteFile(old.id)), std::ios::app);
    m_disk->afterNextSwap([&] {
        fs::remove_all(data.path("Markdown"));
        data.write("Markdown/Notes/note.md", "saved by another");
        editor << " and theirs" << std::flush;
    });

    const auto error = refusalOfSave(snapshotOf({kept, ours}, u"ours"_s));

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(contentOf(data.path("Markdown")),
             (DataFolder::Content{{"Notes", "d"}, {"Notes/note.md", "fsaved by another"}}));
    const std::string copy = hidden(data, ".quillmark-recovery-");
    QCOMPARE(data.read(copy + noteFile(old.id).substr(std::string_view("Markdown").size())),
             noteBytes(old) + " and theirs");
    QCOMPARE(data.count(".quillmark-"), 1);
}

void RacingProgramTest::keepsAFileThatReplacesAnOldOne()
{
    const DataFolder data;
    data.write("Markdown/note", "old");
    data.write("Markdown/other", "kept");
    FolderChange change(data, {{"", "note", "ours"}});

    QVERIFY(change.commitDuring([&] { replaceFile(data.path(".recovery/other"), "theirs"); }));
    const auto outcome = change.takeOldFolder().remove(FolderTree::Deadline::max());

    QVERIFY(outcome == OldFolder::Outcome::needsAttention);
    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/note", "fours"},
                                                  {"Markdown/other", "fkept"},
                                                  {".recovery", "d"},
                                                  {".recovery/note", "fold"},
                                                  {".recovery/other", "ftheirs"}}));
}

void RacingProgramTest::keepsAFileThatIsAddedToTheOldFolder()
{
    const DataFolder data;
    data.write("Markdown/Notes/note", "old");
    FolderChange change(data, {{"Notes", "note", "ours"}}, {"Notes"});

    QVERIFY(change.commitDuring([&] { data.write(".recovery/Notes/new", "theirs"); }));
    const auto outcome = change.takeOldFolder().remove(FolderTree::Deadline::max());

    QVERIFY(outcome == OldFolder::Outcome::needsAttention);
    QCOMPARE(data.read("Markdown/Notes/note"), "ours");
    QCOMPARE(data.read(".recovery/Notes/new"), "theirs");
    QCOMPARE(data.read(".recovery/Notes/note"), "old");
}

void RacingProgramTest::keepsWhatIsWrittenIntoAnOldFile()
{
    // An editor that has the file open writes into the one that was displaced.
    const DataFolder data;
    data.write("Markdown/note", "old");
    std::ofstream editor(data.path("Markdown/note"), std::ios::app);
    FolderChange change(data, {{"", "note", "ours"}});

    QVERIFY(change.commitDuring([&] { editor << " and theirs" << std::flush; }));
    const auto outcome = change.takeOldFolder().remove(FolderTree::Deadline::max());

    QVERIFY(outcome == OldFolder::Outcome::needsAttention);
    QCOMPARE(data.read("Markdown/note"), "ours");
    QCOMPARE(data.read(".recovery/note"), "old and theirs");
}

void RacingProgramTest::keepsWhatComesBeforeTheOldFolderIsRemoved()
{
    const DataFolder &data = *m_data;
    const NoteSnapshot next = snapshotOf({kept, ours}, u"ours"_s);
    m_repository->save(next);
    data.write(hidden(data, ".quillmark-stage-") + "/Notes/new.md", "theirs");

    const auto error = refusal([&] { tidyUp(*m_repository); });

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(data.read(hidden(data, ".quillmark-recovery-") + "/Notes/new.md"), "theirs");
    QCOMPARE(data.count(".quillmark-"), 1);
    QCOMPARE(data.read(noteFile(ours.id)), noteBytes(ours));
    QCOMPARE(refusalOfSave(oldNotes()), RepositoryError::recoveryRequired());
}

void RacingProgramTest::keepsAnOldFolderThatIsMovedAway()
{
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    const auto before = contentOf(data.path("Markdown"));
    m_disk->afterNextSwap([&] {
        fs::rename(data.path(hidden(data, ".quillmark-recovery-")), away);
        // What else begins so is another's, and nobody's to remove.
        fs::create_directory(data.path(".quillmark-stage-of-another"));
    });

    const auto error = refusalOfSave(snapshotOf({kept, ours}, u"ours"_s));

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(contentOf(away), before);
    QVERIFY(data.holds(".quillmark-stage-of-another"));
    QCOMPARE(data.read(noteFile(ours.id)), noteBytes(ours));
    QCOMPARE(data.read(noteFile(kept.id)), noteBytes(kept));
}

QTEST_GUILESS_MAIN(RacingProgramTest)
#include "RacingProgramTest.moc"
