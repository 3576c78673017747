// SPDX-License-Identifier: MIT
#include "FolderLock.h"

#include "DataFolder.h"
#include "MemoryDisk.h"
#include "SystemDisk.h"

#include <QTest>
#include <cerrno>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

/// A folder that one program has for itself.
class FolderLockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void letsOneHaveTheFolder_data();
    void letsOneHaveTheFolder();
    void leavesNothingBehind();
    void keepsOtherProgramsOut();
    void takesTheFolderThatTookThePlaceOfTheLast();
    void goesOnWhereThereAreNoLocks_data();
    void goesOnWhereThereAreNoLocks();
};

void FolderLockTest::letsOneHaveTheFolder_data()
{
    QTest::addColumn<bool>("isReal");

    QTest::newRow("the real disk") << true;
    QTest::newRow("the disk in memory") << false;
}

void FolderLockTest::letsOneHaveTheFolder()
{
    QFETCH(bool, isReal);
    const DataFolder data;
    std::unique_ptr<Disk> disk = std::make_unique<MemoryDisk>();
    if (isReal)
        disk = std::make_unique<SystemDisk>();
    const Directory folder = Directory::openOrMake(*disk, data.path());
    FolderLock second;
    {
        FolderLock first;
        QVERIFY(first.take(folder));

        QVERIFY(!second.take(folder));
        QVERIFY(first.take(folder));
    }

    QVERIFY(second.take(folder));
}

void FolderLockTest::leavesNothingBehind()
{
    const DataFolder data;
    SystemDisk disk;
    const Directory folder = Directory::openOrMake(disk, data.path());

    FolderLock lock;
    QVERIFY(lock.take(folder));

    QVERIFY(data.content().isEmpty());
}

void FolderLockTest::keepsOtherProgramsOut()
{
    const DataFolder data;
    SystemDisk disk;
    const Directory folder = Directory::openOrMake(disk, data.path());
    FolderLock lock;
    QVERIFY(lock.take(folder));

    const pid_t child = ::fork();
    if (child == 0) {
        SystemDisk own;
        const Result<Directory> same = Directory::open(own, data.path());
        FolderLock second;
        ::_exit(same && !second.take(*same) ? 7 : 8);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);

    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 7);
}

void FolderLockTest::takesTheFolderThatTookThePlaceOfTheLast()
{
    const DataFolder data;
    SystemDisk disk;
    FolderLock lock;
    QVERIFY(lock.take(Directory::openOrMake(disk, data.path())));
    const fs::path away = data.path().parent_path() / "away";
    fs::rename(data.path(), away);
    const Directory other = Directory::openOrMake(disk, data.path());

    QVERIFY(lock.take(other));

    FolderLock second;
    QVERIFY(!second.take(other));
    QVERIFY(second.take(Directory::openOrMake(disk, away)));
}

void FolderLockTest::goesOnWhereThereAreNoLocks_data()
{
    QTest::addColumn<int>("error");

    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EBADF, EINVAL})
        QTest::newRow(strerrorname_np(error)) << error;
}

void FolderLockTest::goesOnWhereThereAreNoLocks()
{
    QFETCH(int, error);
    MemoryDisk::Abilities abilities;
    abilities.lockError = error;
    MemoryDisk disk(abilities);
    const Directory folder = Directory::openOrMake(disk, "/data");

    FolderLock first;
    FolderLock second;
    QVERIFY(first.take(folder));
    QVERIFY(second.take(folder));
}

QTEST_GUILESS_MAIN(FolderLockTest)
#include "FolderLockTest.moc"
