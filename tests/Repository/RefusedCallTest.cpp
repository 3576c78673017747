// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "RefusedCall.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>
#include <cerrno>
#include <csignal>
#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

enum Outcome { saved = 1, failedWithTheError, failedOtherwise };

/// Saves in a process that is refused some system calls.
int save(const DataFolder &data, const std::vector<RefusedCall> &calls,
         const NoteSnapshot &snapshot)
{
    // Known before the calls are refused, as a running program knows its notes.
    LocalNoteRepository repository(data.fileURL());
    static_cast<void>(repository.load());
    return withRefusedCalls(calls, [&]() -> int {
        try {
            repository.save(snapshot);
            tidyUp(repository);
            return saved;
        } catch (const FileError &error) {
            return error.systemError() == calls.front().error ? failedWithTheError
                                                              : failedOtherwise;
        } catch (const std::exception &) {
            return failedOtherwise;
        }
    });
}

/// A write only when it is as long as a note.
RefusedCall refused(long number, int error)
{
    return {number, error, number == SYS_write ? 100U : 0U};
}

NoteSnapshot oldNotes()
{
    return snapshotOf({numberedNote(1, u"kept"_s), numberedNote(2, u"old"_s)}, u"old"_s);
}

NoteSnapshot newNotes()
{
    return snapshotOf({numberedNote(1, u"kept"_s), numberedNote(2, u"new"_s)}, u"new"_s);
}

} // namespace

/// What becomes of a save when the kernel refuses to take part.
class RefusedCallTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leavesTheOldNotesAndNothingElse_data();
    void leavesTheOldNotesAndNothingElse();
    void leavesNothingWhenTheFirstSaveFails_data();
    void leavesNothingWhenTheFirstSaveFails();
    void savesWithoutLinks_data();
    void savesWithoutLinks();
    void seesAChangeFromOutsideWithoutLinks();
    void refusesAPipeThatItCannotLink();
    void givesNoRightsToAnotherGroup();
    void savesWithoutAnExchange_data();
    void savesWithoutAnExchange();
    void makesTheFirstFolderWithoutFlagsOfRenames();
    void savesWhereFoldersCannotBeSynced();
    void leavesTheOldNotesToTheNextSave();
    void savesWithTheSameRepositoryAfterAFailure();
    void endsWhenInterruptionsDoNot();
};

void RefusedCallTest::leavesTheOldNotesAndNothingElse_data()
{
    leavesNothingWhenTheFirstSaveFails_data();
    QTest::newRow("read, disk error") << int(SYS_read) << EIO;
    QTest::newRow("rename, disk error") << int(SYS_renameat) << EIO;
    QTest::newRow("exchange, disk error") << int(SYS_renameat2) << EIO;
}

void RefusedCallTest::leavesNothingWhenTheFirstSaveFails_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("error");

    QTest::newRow("write, disk full") << int(SYS_write) << ENOSPC;
    QTest::newRow("write, quota") << int(SYS_write) << EDQUOT;
    QTest::newRow("make a folder, no permission") << int(SYS_mkdirat) << EACCES;
    QTest::newRow("make a folder, read-only") << int(SYS_mkdirat) << EROFS;
    QTest::newRow("sync, disk error") << int(SYS_fsync) << EIO;
    QTest::newRow("open, too many files") << int(SYS_openat) << EMFILE;
    QTest::newRow("list, disk error") << int(SYS_getdents64) << EIO;
}

void RefusedCallTest::leavesTheOldNotesAndNothingElse()
{
    QFETCH(int, number);
    QFETCH(int, error);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    const auto before = data.content();

    QCOMPARE(save(data, {refused(number, error)}, newNotes()), int(failedWithTheError));

    QCOMPARE(data.content(), before);
}

void RefusedCallTest::leavesNothingWhenTheFirstSaveFails()
{
    QFETCH(int, number);
    QFETCH(int, error);
    const DataFolder data;
    fs::create_directory(data.path());

    QCOMPARE(save(data, {refused(number, error)}, newNotes()), int(failedWithTheError));

    QVERIFY(data.content().isEmpty());
}

void RefusedCallTest::savesWithoutLinks_data()
{
    QTest::addColumn<int>("error");

    for (const int error : {EPERM, EACCES, EMLINK, EXDEV, EOPNOTSUPP, ENOSYS})
        QTest::newRow(strerrorname_np(error)) << error;
}

void RefusedCallTest::savesWithoutLinks()
{
    QFETCH(int, error);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    data.write("Markdown/photos/a.jpg", QByteArray(200'000, 'x'));
    fs::permissions(data.path("Markdown/photos/a.jpg"), fs::perms(0640));
    fs::create_symlink("photos/a.jpg", data.path("Markdown/link"));
    const struct stat before = data.status("Markdown/photos/a.jpg");

    QCOMPARE(save(data, {refused(SYS_linkat, error)}, newNotes()), int(saved));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
    QCOMPARE(data.read("Markdown/photos/a.jpg"), QByteArray(200'000, 'x'));
    QCOMPARE(fs::read_symlink(data.path("Markdown/link")), fs::path("photos/a.jpg"));
    const struct stat after = data.status("Markdown/photos/a.jpg");
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    QCOMPARE(data.count(".quillmark-"), 0);
}

void RefusedCallTest::seesAChangeFromOutsideWithoutLinks()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());

    const int outcome = withRefusedCalls({refused(SYS_linkat, EPERM)}, [&]() -> int {
        try {
            data.write(noteFile(numberedId(1)), "theirs");
            repository.save(newNotes());
            tidyUp(repository);
            return saved;
        } catch (const RepositoryError &error) {
            return error == RepositoryError::externalChange() ? failedWithTheError
                                                              : failedOtherwise;
        }
    });

    QCOMPARE(outcome, int(failedWithTheError));
    QCOMPARE(data.read(noteFile(numberedId(1))), "theirs");
    QCOMPARE(data.count(".quillmark-"), 0);
}

void RefusedCallTest::refusesAPipeThatItCannotLink()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    QCOMPARE(::mkfifo(data.path("Markdown/pipe").c_str(), 0600), 0);
    const auto before = data.content();

    QCOMPARE(save(data, {refused(SYS_linkat, EPERM)}, newNotes()), int(failedOtherwise));

    QCOMPARE(data.content(), before);
}

void RefusedCallTest::givesNoRightsToAnotherGroup()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    data.write("Markdown/shared/list.txt", "theirs");
    constexpr gid_t group = 4242;
    for (const char *const name : {"Markdown/shared/list.txt", "Markdown/shared"}) {
        if (::chown(data.path(name).c_str(), static_cast<uid_t>(-1), group) != 0)
            QSKIP("Only root may give a folder to any group.");
        QCOMPARE(::chmod(data.path(name).c_str(), 02775), 0);
    }

    // A user who is no longer in the group copies both; their group is then the user's own.
    QCOMPARE(save(data, {refused(SYS_linkat, EPERM), refused(SYS_fchown, EPERM)}, newNotes()),
             int(saved));

    QVERIFY(data.status("Markdown/shared").st_gid != group);
    QCOMPARE(data.status("Markdown/shared").st_mode & 07777, 0705U);
    QVERIFY(data.status("Markdown/shared/list.txt").st_gid != group);
    QCOMPARE(data.status("Markdown/shared/list.txt").st_mode & 07777, 0705U);
}

void RefusedCallTest::savesWithoutAnExchange_data()
{
    QTest::addColumn<int>("error");

    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP, EPERM})
        QTest::newRow(strerrorname_np(error)) << error;
}

void RefusedCallTest::savesWithoutAnExchange()
{
    QFETCH(int, error);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());

    QCOMPARE(save(data, {refused(SYS_renameat2, error)}, newNotes()), int(saved));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
    QCOMPARE(data.count(".quillmark-"), 0);
}

void RefusedCallTest::makesTheFirstFolderWithoutFlagsOfRenames()
{
    const DataFolder data;

    QCOMPARE(save(data, {refused(SYS_renameat2, EINVAL)}, newNotes()), int(saved));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
}

void RefusedCallTest::savesWhereFoldersCannotBeSynced()
{
    // EINVAL is the answer of file systems that have nothing to sync for a folder; every file can
    // be synced, and one that cannot is a failure.
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    const NoteSnapshot fewer = snapshotOf({numberedNote(1, u"kept"_s)}, u"old"_s);

    QCOMPARE(save(data, {refused(SYS_fsync, EINVAL)}, fewer), int(saved));
    QCOMPARE(save(data, {refused(SYS_fsync, EINVAL)}, newNotes()), int(failedWithTheError));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), fewer);
}

void RefusedCallTest::leavesTheOldNotesToTheNextSave()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());
    QCOMPARE(save(data, {refused(SYS_write, ENOSPC)}, newNotes()), int(failedWithTheError));

    QCOMPARE(save(data, {refused(SYS_ptrace, ENOSYS)}, newNotes()), int(saved));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
}

void RefusedCallTest::savesWithTheSameRepositoryAfterAFailure()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(oldNotes());
    // The notes are longer than a file may be for a moment, as when a disk is full.
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{1, limit.rlim_max};
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &full), 0);

    const auto error = thrown<FileError>([&] { repository.save(newNotes()); });

    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    QVERIFY(error.has_value());
    QCOMPARE(error->systemError(), EFBIG);
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), oldNotes());
    repository.save(newNotes());
    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), newNotes());
}

void RefusedCallTest::endsWhenInterruptionsDoNot()
{
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(oldNotes());

    QCOMPARE(save(data, {refused(SYS_fsync, EINTR)}, newNotes()), int(failedWithTheError));

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), oldNotes());
    QCOMPARE(data.count(".quillmark-"), 0);
}

QTEST_GUILESS_MAIN(RefusedCallTest)
#include "RefusedCallTest.moc"
