// SPDX-License-Identifier: MIT
#include "MarkdownTransaction.h"

#include "DataFolder.h"
#include "Thrown.h"

#include <QTest>

namespace fs = std::filesystem;

namespace {

constexpr auto agree = [] {};
constexpr auto agreeToDisplaced = [](const fs::path &) {};

using Callback = std::function<void()>;

void putFile(const fs::path &path, const QByteArray &bytes)
{
    fs::remove(path);
    std::ofstream(path, std::ios::binary).write(bytes.data(), bytes.size());
}

/// A save that changes the note while another program does something.
std::optional<RepositoryError> refusalOfSave(const DataFolder &data, const Callback &beforeTheSwap,
                                             const Callback &afterTheSwap)
{
    return refusal([&] {
        MarkdownTransaction::replace(
            data.path("Markdown"),
            [](const fs::path &stage) { putFile(stage / "Notes/note.md", "ours"); }, beforeTheSwap,
            [&](const fs::path &) { afterTheSwap(); });
    });
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

} // namespace

/// Another program that works in the folder at the worst of all moments: what it wrote or moved is
/// there afterwards, under a name at which somebody looks.
class RacingProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void leavesAFolderAloneThatWasMovedAway();
    void leavesAFolderAloneThatBecameALink();
    void leavesAFirstFolderAloneThatTookItsPlace();
    void keepsWhatWasWrittenIntoANewFolderThatIsTakenBack();
    void keepsAFolderThatTookThePlaceOfTheNewOne();
    void keepsAFileThatReplacesAnOldOne();
    void keepsAFileThatIsAddedToTheOldFolder();
    void keepsWhatIsWrittenIntoAnOldFile();
    void keepsAnOldFolderThatIsMovedAway();

private:
    std::optional<DataFolder> m_data;
};

void RacingProgramTest::init()
{
    m_data.emplace();
    m_data->write("Markdown/Notes/note.md", "old");
    m_data->write("Markdown/Notes/other.md", "kept");
}

void RacingProgramTest::leavesAFolderAloneThatWasMovedAway()
{
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    const auto moveAndCopyBack = [&] {
        fs::rename(data.path("Markdown"), away);
        fs::copy(away, data.path("Markdown"), fs::copy_options::recursive);
        data.write("Markdown/Notes/theirs.md", "theirs");
    };

    const auto error = refusalOfSave(data, moveAndCopyBack, agree);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(std::distance(fs::directory_iterator(away / "Notes"), {}), 2);
    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"},
                                                  {"Markdown/Notes", "d"},
                                                  {"Markdown/Notes/note.md", "fold"},
                                                  {"Markdown/Notes/other.md", "fkept"},
                                                  {"Markdown/Notes/theirs.md", "ftheirs"}}));
}

void RacingProgramTest::leavesAFolderAloneThatBecameALink()
{
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    const auto moveAndLink = [&] {
        fs::rename(data.path("Markdown"), away);
        fs::create_directory_symlink(away, data.path("Markdown"));
    };

    const auto error = refusalOfSave(data, moveAndLink, agree);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(std::distance(fs::directory_iterator(away / "Notes"), {}), 2);
    QVERIFY(fs::is_symlink(data.path("Markdown")));
    QCOMPARE(data.count(""), 1);
}

void RacingProgramTest::leavesAFirstFolderAloneThatTookItsPlace()
{
    const DataFolder data;
    const auto makeTheirs = [&] { data.write("Markdown/Notes/note.md", "theirs"); };

    const auto error = refusal([&] {
        MarkdownTransaction::replace(
            data.path("Markdown"), [](const fs::path &stage) { putFile(stage / "ours", ""); },
            makeTheirs, agreeToDisplaced);
    });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.read("Markdown/Notes/note.md"), "theirs");
    QCOMPARE(data.count(""), 1);
}

void RacingProgramTest::keepsWhatWasWrittenIntoANewFolderThatIsTakenBack()
{
    const DataFolder &data = *m_data;
    const auto writeAndRefuse = [&] {
        data.write("Markdown/Notes/theirs.md", "theirs");
        throw RepositoryError::externalChange();
    };

    const auto error = refusalOfSave(data, agree, writeAndRefuse);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.read("Markdown/Notes/note.md"), "old");
    const std::string copy = hidden(data, ".quillmark-recovery-");
    QCOMPARE(data.read(copy + "/Notes/theirs.md"), "theirs");
    QCOMPARE(data.read(copy + "/Notes/note.md"), "ours");
    QCOMPARE(data.count(".quillmark-"), 1);
}

void RacingProgramTest::keepsAFolderThatTookThePlaceOfTheNewOne()
{
    // Such as a second program of ours that saved in between.
    const DataFolder &data = *m_data;
    const auto replaceAndRefuse = [&] {
        fs::remove_all(data.path("Markdown"));
        data.write("Markdown/Notes/note.md", "saved by another");
        throw RepositoryError::externalChange();
    };

    const auto error = refusalOfSave(data, agree, replaceAndRefuse);

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.read("Markdown/Notes/note.md"), "saved by another");
    const std::string copy = hidden(data, ".quillmark-recovery-");
    QCOMPARE(data.read(copy + "/Notes/note.md"), "old");
}

void RacingProgramTest::keepsAFileThatReplacesAnOldOne()
{
    const DataFolder &data = *m_data;
    const auto replaceOld = [&] {
        const fs::path old = data.path(hidden(data, ".quillmark-recovery-")) / "Notes";
        putFile(old / ".temporary", "theirs");
        fs::rename(old / ".temporary", old / "other.md");
    };

    const auto error = refusalOfSave(data, agree, replaceOld);

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(data.read("Markdown/Notes/note.md"), "ours");
    const std::string copy = hidden(data, ".quillmark-recovery-");
    QCOMPARE(data.read(copy + "/Notes/other.md"), "theirs");
    QCOMPARE(data.read(copy + "/Notes/note.md"), "old");
    QCOMPARE(data.count(".quillmark-"), 1);
}

void RacingProgramTest::keepsAFileThatIsAddedToTheOldFolder()
{
    const DataFolder &data = *m_data;
    const auto add = [&] {
        putFile(data.path(hidden(data, ".quillmark-recovery-")) / "Notes/new.md", "theirs");
    };

    const auto error = refusalOfSave(data, agree, add);

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(data.read(hidden(data, ".quillmark-recovery-") + "/Notes/new.md"), "theirs");
}

void RacingProgramTest::keepsWhatIsWrittenIntoAnOldFile()
{
    // An editor that has the file open writes into the one that was displaced.
    const DataFolder &data = *m_data;
    std::ofstream editor(data.path("Markdown/Notes/note.md"), std::ios::app);
    const auto write = [&] { editor << " and theirs" << std::flush; };

    const auto error = refusalOfSave(data, agree, write);

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(data.read("Markdown/Notes/note.md"), "ours");
    QCOMPARE(data.read(hidden(data, ".quillmark-recovery-") + "/Notes/note.md"), "old and theirs");
}

void RacingProgramTest::keepsAnOldFolderThatIsMovedAway()
{
    const DataFolder &data = *m_data;
    const fs::path away = data.path().parent_path() / "away";
    const auto move = [&] {
        fs::rename(data.path(hidden(data, ".quillmark-recovery-")), away);
        // What then has its name is another's, and nobody's to remove.
        fs::create_directory(data.path(".quillmark-stage-of-another"));
    };

    static_cast<void>(thrown<FileError>([&] { refusalOfSave(data, agree, move); }));

    QCOMPARE(std::distance(fs::directory_iterator(away / "Notes"), {}), 2);
    QVERIFY(data.holds(".quillmark-stage-of-another"));
    QVERIFY(data.holds("Markdown/Notes/other.md"));
}

QTEST_GUILESS_MAIN(RacingProgramTest)
#include "RacingProgramTest.moc"
