// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

const Note first = numberedNote(1, u"first"_s);
const Note second = numberedNote(2, u"second"_s);

} // namespace

/// Notes that other programs and other computers change as well.
class ReloadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void seesNoChangeOfItsOwn();
    void takesInWhatChanged();
    void keepsWhatIsTypedBesideIt();
    void savesAfterwards();
    void leavesAllAsItWasWhenItCannotBeRead();
    void namesTheRecoveryCopyThatCame();
    void findsNoFolderAndNoneAgain();
    void hasNoDraftsWithoutTheirFolder();
    void makesTheFolderOfTheDraftsForTheFirst();
    void refusesADraftWhoseFolderIsGone();

private:
    std::optional<DataFolder> m_data;
    std::optional<LocalNoteRepository> m_repository;
};

void ReloadTest::init()
{
    m_repository.reset();
    m_data.emplace();
    m_repository.emplace(m_data->fileURL());
    m_repository->save(snapshotOf({first, second}, u"draft"_s));
}

void ReloadTest::seesNoChangeOfItsOwn()
{
    QVERIFY(!m_repository->isChangedOutside());
    m_repository->save(snapshotOf({second}, u"another"_s));
    QVERIFY(!m_repository->isChangedOutside());
    tidyUp(*m_repository);
    QVERIFY(!m_repository->isChangedOutside());
}

void ReloadTest::takesInWhatChanged()
{
    const Note third = numberedNote(3, u"third"_s);
    m_data->write(noteFile(third.id), noteBytes(third));
    fs::remove(m_data->path(noteFile(second.id)));
    m_data->write("Markdown/Drafts/capture.md", "theirs");
    QVERIFY(m_repository->isChangedOutside());

    const NoteSnapshot found = m_repository->reload(snapshotOf({first, second}, u"draft"_s));

    QCOMPARE(found, snapshotOf({first, third}, u"theirs"_s));
    QVERIFY(!m_repository->isChangedOutside());
}

void ReloadTest::keepsWhatIsTypedBesideIt()
{
    m_data->write("Markdown/Drafts/capture.md", "theirs");
    fs::remove(m_data->path(noteFile(second.id)));

    const NoteSnapshot found = m_repository->reload(
        snapshotOf({first, second}, u"ours"_s,
                   {{canonicalText(first.id), u"edit"_s}, {canonicalText(second.id), u"lost"_s}}));

    QCOMPARE(found, snapshotOf({first}, u"ours\n\ntheirs\n\nlost"_s,
                               {{canonicalText(first.id), u"edit"_s}}));
}

void ReloadTest::savesAfterwards()
{
    m_data->write("Markdown/Drafts/capture.md", "theirs");
    const NoteSnapshot found = m_repository->reload(snapshotOf({first, second}, u"ours"_s));

    m_repository->save(found);

    QCOMPARE(LocalNoteRepository(m_data->fileURL()).load(),
             snapshotOf({first, second}, u"ours\n\ntheirs"_s));
}

void ReloadTest::leavesAllAsItWasWhenItCannotBeRead()
{
    const NoteSnapshot before = snapshotOf({first, second}, u"draft"_s);
    m_data->write("Markdown/Notes/plan.md", "no note");

    QCOMPARE(refusal([&] { static_cast<void>(m_repository->reload(before)); }),
             RepositoryError::invalidMarkdown());
    QCOMPARE(refusal([&] { m_repository->save(before); }), RepositoryError::externalChange());

    fs::remove(m_data->path("Markdown/Notes/plan.md"));
    m_repository->save(before);
}

void ReloadTest::namesTheRecoveryCopyThatCame()
{
    m_data->write(".quillmark-recovery-x/Drafts/capture.md", "old");

    const auto error = refusal([&] { static_cast<void>(m_repository->isChangedOutside()); });

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QCOMPARE(*error->place(), m_data->path(".quillmark-recovery-x"));
}

void ReloadTest::findsNoFolderAndNoneAgain()
{
    const DataFolder empty;
    LocalNoteRepository repository(empty.fileURL());
    static_cast<void>(repository.load());

    QVERIFY(!repository.isChangedOutside());
    LocalNoteRepository(empty.fileURL()).save(snapshotOf({first}));

    QVERIFY(repository.isChangedOutside());
    QCOMPARE(repository.reload({}), snapshotOf({first}));
}

void ReloadTest::hasNoDraftsWithoutTheirFolder()
{
    fs::remove_all(m_data->path("Markdown/Drafts"));
    LocalNoteRepository other(m_data->fileURL());

    QCOMPARE(other.load(), snapshotOf({first, second}));
    QVERIFY(!other.isChangedOutside());
}

void ReloadTest::makesTheFolderOfTheDraftsForTheFirst()
{
    fs::remove_all(m_data->path("Markdown/Drafts"));
    m_repository.emplace(m_data->fileURL());
    static_cast<void>(m_repository->load());

    m_repository->save(snapshotOf({first, second}, u"new"_s));

    QCOMPARE(m_data->read("Markdown/Drafts/capture.md"), "new");
    fs::remove_all(m_data->path("Markdown/Drafts"));
    m_repository.emplace(m_data->fileURL());
    static_cast<void>(m_repository->load());
    m_repository->save(snapshotOf({first, numberedNote(3, u"new"_s)}, u"newer"_s));
    QCOMPARE(LocalNoteRepository(m_data->fileURL()).load(),
             snapshotOf({first, numberedNote(3, u"new"_s)}, u"newer"_s));
}

void ReloadTest::refusesADraftWhoseFolderIsGone()
{
    fs::remove_all(m_data->path("Markdown/Drafts"));

    QVERIFY(m_repository->isChangedOutside());
    QCOMPARE(refusal([&] {
                 m_repository->save(snapshotOf({first, second}, u"new"_s));
             }),
             RepositoryError::externalChange());
    QCOMPARE(m_repository->reload(snapshotOf({first, second}, u"new"_s)),
             snapshotOf({first, second}, u"new"_s));
    m_repository->save(snapshotOf({first, second}, u"new"_s));
    QCOMPARE(m_data->read("Markdown/Drafts/capture.md"), "new");
}

QTEST_GUILESS_MAIN(ReloadTest)
#include "ReloadTest.moc"
