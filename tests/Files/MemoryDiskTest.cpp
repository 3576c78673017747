// SPDX-License-Identifier: MIT
#include "MemoryDisk.h"

#include <QTest>
#include <cerrno>
#include <functional>
#include <map>
#include <set>

class MemoryDiskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsAnOpenFileThatHasNoNameAnyMore();
    void givesTheNumberOfAFileThatIsGoneToTheNext();
    void givesChangesOfOneTickTheSameTime();
    void followsSymbolicLinksInPathsOnly();
    void refusesWhatItCannotDo();
    void mindsPermissionsUnlessTheUserMayDoEverything();
    void keepsOthersFromWhatIsImmutable();

    void failsTheCallsThatAWatcherFails();
    void closesAHandleEvenWhenThatFails();
    void doesACallWhoseAnswerIsLost();
    void readsAndWritesAPartWhenToldTo();
    void letsAnotherProgramActBetweenTwoCalls();
    void writesALineForEveryCall();

    void showsInAnImageWhatWasThere();
    void becomesWhatAnImageShows();

    void losesAtAPowerCutWhatWasNotSynced();
    void keepsAtAPowerCutWhatWasSynced();
    void syncsWithAFolderWhatItsChangesBuildOn();
    void syncsWithAFolderNoneOfTheFoldersInIt();
    void tearsAFileThatWasNotSynced();
    void losesAnExchangeAsAWhole();
    void keepsEverythingWhenTheFileSystemWasSynced();
};

namespace {

using Rename = Disk::Rename;
using Handle = Disk::Handle;

/// What a call must bring for the test to go on.
template <typename T>
T must(Result<T> result)
{
    if (!result)
        qFatal("A call failed that must succeed: %s.",
               strerrorname_np(result.failure().systemError));
    return *result;
}
void must(const Result<void> &result)
{
    if (!result)
        qFatal("A call failed that must succeed: %s.",
               strerrorname_np(result.failure().systemError));
}

template <typename T>
int errorOf(const Result<T> &result)
{
    return result ? 0 : result.failure().systemError;
}

void write(MemoryDisk &disk, Handle folder, const char *name, const std::string &text,
           bool isSynced = false)
{
    const Handle file = must(disk.makeFile(folder, name));
    must(disk.write(file, text.data(), text.size()));
    if (isSynced)
        must(disk.sync(file));
    must(disk.close(file));
}

std::string read(MemoryDisk &disk, Handle file)
{
    std::string bytes(100, ' ');
    bytes.resize(must(disk.read(file, bytes.data(), bytes.size())));
    return bytes;
}

std::string content(MemoryDisk &disk, Handle folder, const char *name)
{
    const Handle file = must(disk.openFile(folder, name));
    std::string bytes = read(disk, file);
    must(disk.close(file));
    return bytes;
}

Handle makeFolder(MemoryDisk &disk, Handle folder, const char *name)
{
    must(disk.makeFolder(folder, name));
    return must(disk.openFolder(folder, name));
}

bool holds(MemoryDisk &disk, Handle folder, const char *name)
{
    return static_cast<bool>(disk.status(folder, name));
}

/// Does one thing to the calls of one kind.
struct Watcher final : DiskWatcher {
    Fate before(MemoryDisk &disk, const DiskCall &call) noexcept override
    {
        if (call.kind != kind)
            return {};
        if (act)
            act(disk);
        return fate;
    }
    void after(MemoryDisk & /*disk*/, const DiskCall & /*call*/) noexcept override { ++count; }

    DiskCall::Kind kind;
    Fate fate;
    std::function<void(MemoryDisk &)> act;
    int count = 0;
};

MemoryDisk::Abilities losingPower()
{
    MemoryDisk::Abilities abilities;
    abilities.canLosePower = true;
    return abilities;
}

/// All that a power cut now may leave, in the words of the test.
std::set<std::string> afterPowerCuts(const MemoryDisk &disk,
                                     const std::function<std::string(MemoryDisk &, Handle)> &look)
{
    std::set<std::string> found;
    Dice dice(1);
    for (int i = 0; i < 300; ++i) {
        MemoryDisk after(disk.afterPowerCut(dice));
        const Handle root = must(after.openPath("/"));
        found.insert(look(after, root));
        must(after.close(root));
    }
    return found;
}

} // namespace

void MemoryDiskTest::keepsAnOpenFileThatHasNoNameAnyMore()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    write(disk, root, "a", "text");
    const Handle file = must(disk.openFile(root, "a"));

    must(disk.unlink(root, "a", FileKind::file));
    write(disk, root, "b", "other");

    QCOMPARE(read(disk, file), "text");
    QVERIFY(must(disk.status(file)).identity != must(disk.status(root, "b")).identity);
}

void MemoryDiskTest::givesTheNumberOfAFileThatIsGoneToTheNext()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    write(disk, root, "a", "text");
    const FileIdentity gone = must(disk.status(root, "a")).identity;

    must(disk.unlink(root, "a", FileKind::file));
    write(disk, root, "b", "other");

    QVERIFY(must(disk.status(root, "b")).identity == gone);
}

void MemoryDiskTest::givesChangesOfOneTickTheSameTime()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    disk.letTimePass(MemoryDisk::tick - disk.now() % MemoryDisk::tick);
    write(disk, root, "a", "text");
    const FileStatus before = must(disk.status(root, "a"));

    must(disk.overwrite(root, "a", "TEXT"));
    QVERIFY(must(disk.status(root, "a")) == before);

    disk.letTimePass(MemoryDisk::tick);
    must(disk.overwrite(root, "a", "text"));
    QVERIFY(must(disk.status(root, "a")).changed > before.changed);
    QCOMPARE(must(disk.status(root, "a")).changed, disk.now());
}

void MemoryDiskTest::followsSymbolicLinksInPathsOnly()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    const Handle folder = makeFolder(disk, root, "folder");
    must(disk.makeSymbolicLink(root, "link", "folder/../folder"));
    must(disk.makeSymbolicLink(folder, "loop", "/folder/loop"));

    const Handle found = must(disk.openPath("/link/."));

    QVERIFY(must(disk.status(found)) == must(disk.status(folder)));
    QCOMPARE(errorOf(disk.openFolder(root, "link")), ENOTDIR);
    QCOMPARE(errorOf(disk.openFile(root, "link")), ELOOP);
    QCOMPARE(errorOf(disk.openPath("/folder/loop")), ELOOP);
    QCOMPARE(errorOf(disk.openPath("/none/below")), ENOENT);
    QCOMPARE(must(disk.status(root, "link")).kind, FileKind::link);
}

void MemoryDiskTest::refusesWhatItCannotDo()
{
    MemoryDisk::Abilities abilities;
    abilities.canExchange = false;
    abilities.canKeepFromReplacing = false;
    abilities.linkError = EOPNOTSUPP;
    abilities.hasReliableTimes = false;
    MemoryDisk disk(abilities);
    const Handle root = must(disk.openPath("/"));
    const Handle one = makeFolder(disk, root, "one");
    makeFolder(disk, root, "two");
    write(disk, root, "a", "text");

    QCOMPARE(errorOf(disk.rename(root, "one", root, "two", Rename::exchange)), EINVAL);
    QCOMPARE(errorOf(disk.rename(root, "one", root, "three", Rename::noReplace)), EINVAL);
    QCOMPARE(errorOf(disk.link(root, one, "a")), EOPNOTSUPP);
    QVERIFY(!disk.hasReliableTimes(root));
}

void MemoryDiskTest::mindsPermissionsUnlessTheUserMayDoEverything()
{
    MemoryDisk::Abilities abilities;
    abilities.isPrivileged = false;
    MemoryDisk disk(abilities);
    const Handle root = must(disk.openPath("/"));
    const Handle folder = makeFolder(disk, root, "folder");
    write(disk, folder, "a", "text");

    must(disk.setMode(folder, 0500));
    QCOMPARE(errorOf(disk.unlink(folder, "a", FileKind::file)), EACCES);
    QCOMPARE(errorOf(disk.makeFile(folder, "b")), EACCES);
    QCOMPARE(content(disk, folder, "a"), "text");

    must(disk.setMode(folder, 0200));
    QCOMPARE(errorOf(disk.openFolder(root, "folder")), EACCES);
    QCOMPARE(errorOf(disk.status(folder, "a")), EACCES);

    abilities.isPrivileged = true;
    disk.setAbilities(abilities);
    must(disk.unlink(folder, "a", FileKind::file));
}

void MemoryDiskTest::keepsOthersFromWhatIsImmutable()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    const Handle folder = makeFolder(disk, root, "folder");
    write(disk, root, "a", "text");
    must(disk.setAttributes(root, "a", {.isMountPoint = false, .isImmutable = true}));
    must(disk.setAttributes(root, "folder", {.isMountPoint = true, .isImmutable = false}));

    QVERIFY(must(disk.attributes(root, "a")).isImmutable);
    QVERIFY(must(disk.attributes(folder, "")).isMountPoint);
    QCOMPARE(errorOf(disk.unlink(root, "a", FileKind::file)), EPERM);
    QCOMPARE(errorOf(disk.link(root, folder, "a")), EPERM);
    QCOMPARE(errorOf(disk.rename(root, "folder", root, "b", Rename::replace)), EBUSY);
}

void MemoryDiskTest::failsTheCallsThatAWatcherFails()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    Watcher watcher;
    watcher.kind = DiskCall::Kind::makeFolder;
    watcher.fate = {DiskWatcher::Fate::Kind::fails, ENOSPC};
    disk.setWatcher(&watcher);

    QCOMPARE(errorOf(disk.makeFolder(root, "a")), ENOSPC);

    QVERIFY(!holds(disk, root, "a"));
    QCOMPARE(watcher.count, 2);
}

void MemoryDiskTest::closesAHandleEvenWhenThatFails()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    Watcher watcher;
    watcher.kind = DiskCall::Kind::close;
    watcher.fate = {DiskWatcher::Fate::Kind::fails, EIO};
    disk.setWatcher(&watcher);

    QCOMPARE(errorOf(disk.close(root)), EIO);

    QCOMPARE(disk.openHandleCount(), 0U);
}

void MemoryDiskTest::doesACallWhoseAnswerIsLost()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    makeFolder(disk, root, "a");
    Watcher watcher;
    watcher.kind = DiskCall::Kind::rename;
    watcher.fate = {DiskWatcher::Fate::Kind::answerIsLost, EINTR};
    disk.setWatcher(&watcher);

    QCOMPARE(errorOf(disk.rename(root, "a", root, "b", Rename::replace)), EINTR);
    QVERIFY(holds(disk, root, "b"));

    // The error of a call that has one of its own is no lost answer.
    QCOMPARE(errorOf(disk.rename(root, "a", root, "b", Rename::replace)), ENOENT);
}

void MemoryDiskTest::readsAndWritesAPartWhenToldTo()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    Watcher watcher;
    watcher.fate = {DiskWatcher::Fate::Kind::isShort, 0};
    disk.setWatcher(&watcher);
    const Handle file = must(disk.makeFile(root, "a"));

    watcher.kind = DiskCall::Kind::write;
    QCOMPARE(must(disk.write(file, "abcdef", 6)), 3U);
    QCOMPARE(must(disk.write(file, "def", 3)), 2U);

    watcher.kind = DiskCall::Kind::read;
    QCOMPARE(content(disk, root, "a"), "abc");
}

void MemoryDiskTest::letsAnotherProgramActBetweenTwoCalls()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    disk.setCallCount(0);
    Watcher watcher;
    watcher.kind = DiskCall::Kind::makeFolder;
    watcher.act = [&](MemoryDisk &other) {
        const MemoryDisk::Unwatched unwatched(other);
        must(other.makeFolder(root, "a"));
    };
    disk.setWatcher(&watcher);

    QCOMPARE(errorOf(disk.makeFolder(root, "a")), EEXIST);

    QCOMPARE(watcher.count, 1);
    QCOMPARE(disk.callCount(), 1U);
}

void MemoryDiskTest::writesALineForEveryCall()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    std::vector<std::string> log;
    disk.setLog(&log);
    disk.setCallCount(0);

    must(disk.makeFolder(root, "a"));
    static_cast<void>(disk.rename(root, "b", root, "c", Rename::replace));

    const std::vector<std::string> wanted{"0 makeFolder #1 a", "1 rename #1 b -> #1 c: ENOENT"};
    QCOMPARE(log, wanted);
}

void MemoryDiskTest::showsInAnImageWhatWasThere()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    const Handle folder = makeFolder(disk, root, "folder");
    write(disk, folder, "a", "text");
    const MemoryDisk::Image image = disk.image();

    must(disk.overwrite(folder, "a", "changed"));
    write(disk, folder, "b", "new");
    must(disk.rename(root, "folder", root, "moved", Rename::replace));

    MemoryDisk before(image);
    const Handle folderBefore = must(before.openPath("/folder"));
    QCOMPARE(content(before, folderBefore, "a"), "text");
    QVERIFY(!holds(before, folderBefore, "b"));
    QVERIFY(!holds(before, must(before.openPath("/")), "moved"));
    QCOMPARE(content(disk, folder, "a"), "changed");
}

void MemoryDiskTest::becomesWhatAnImageShows()
{
    MemoryDisk disk;
    const Handle root = must(disk.openPath("/"));
    const MemoryDisk::Image image = disk.image();
    write(disk, root, "a", "text");
    const Handle file = must(disk.openFile(root, "a"));
    must(disk.unlink(root, "a", FileKind::file));
    const std::int64_t inode = static_cast<std::int64_t>(must(disk.status(file)).identity.inode);

    disk.closeAll();
    QCOMPARE(disk.openHandleCount(), 0U);
    disk.become(image);

    const Handle again = must(disk.openPath("/"));
    QVERIFY(!holds(disk, again, "a"));
    // Nothing is left of what was only held open.
    write(disk, again, "b", "text");
    QCOMPARE(static_cast<std::int64_t>(must(disk.status(again, "b")).identity.inode), inode);
}

void MemoryDiskTest::losesAtAPowerCutWhatWasNotSynced()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    makeFolder(disk, root, "a");
    makeFolder(disk, root, "b");

    const auto found = afterPowerCuts(disk, [](MemoryDisk &after, Handle folder) {
        return std::string(holds(after, folder, "a") ? "a" : "") +
               (holds(after, folder, "b") ? "b" : "");
    });

    // In any order: the second may be there without the first.
    const std::set<std::string> wanted{"", "a", "b", "ab"};
    QCOMPARE(found, wanted);
}

void MemoryDiskTest::keepsAtAPowerCutWhatWasSynced()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    const Handle folder = makeFolder(disk, root, "folder");
    write(disk, folder, "a", "text", true);
    must(disk.sync(folder));
    must(disk.sync(root));
    must(disk.unlink(folder, "a", FileKind::file));

    const auto found = afterPowerCuts(disk, [](MemoryDisk &after, Handle top) {
        const Handle below = must(after.openFolder(top, "folder"));
        return holds(after, below, "a") ? content(after, below, "a") : std::string("gone");
    });

    const std::set<std::string> wanted{"text", "gone"};
    QCOMPARE(found, wanted);
}

void MemoryDiskTest::syncsWithAFolderWhatItsChangesBuildOn()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    const Handle one = makeFolder(disk, root, "one");
    const Handle two = makeFolder(disk, root, "two");
    write(disk, one, "a", "text", true);
    must(disk.rename(one, "a", one, "b", Rename::replace));
    must(disk.rename(one, "b", two, "c", Rename::replace));
    must(disk.sync(two));
    must(disk.sync(root));

    const auto found = afterPowerCuts(disk, [](MemoryDisk &after, Handle top) {
        const Handle from = must(after.openFolder(top, "one"));
        if (holds(after, from, "a") || holds(after, from, "b"))
            return std::string("still there");
        return content(after, must(after.openFolder(top, "two")), "c");
    });

    const std::set<std::string> wanted{"text"};
    QCOMPARE(found, wanted);
}

void MemoryDiskTest::syncsWithAFolderNoneOfTheFoldersInIt()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    const Handle stage = makeFolder(disk, root, "stage");
    write(disk, stage, "a", "text", true);
    must(disk.rename(root, "stage", root, "live", Rename::replace));
    must(disk.sync(root));

    const auto found = afterPowerCuts(disk, [](MemoryDisk &after, Handle top) {
        const Handle live = must(after.openFolder(top, "live"));
        return holds(after, live, "a") ? content(after, live, "a") : std::string("gone");
    });

    const std::set<std::string> wanted{"text", "gone"};
    QCOMPARE(found, wanted);
}

void MemoryDiskTest::tearsAFileThatWasNotSynced()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    write(disk, root, "a", "ab");
    must(disk.sync(root));

    const auto found = afterPowerCuts(
        disk, [](MemoryDisk &after, Handle top) { return content(after, top, "a"); });

    using namespace std::string_literals;
    const std::set<std::string> wanted{"", "a", "ab", "a\0"s, "\0\0"s};
    QCOMPARE(found, wanted);
}

void MemoryDiskTest::losesAnExchangeAsAWhole()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    write(disk, root, "a", "old", true);
    write(disk, root, "b", "new", true);
    must(disk.sync(root));
    must(disk.rename(root, "b", root, "a", Rename::exchange));

    const auto found = afterPowerCuts(disk, [](MemoryDisk &after, Handle top) {
        return content(after, top, "a") + ' ' + content(after, top, "b");
    });

    const std::set<std::string> wanted{"old new", "new old"};
    QCOMPARE(found, wanted);
}

void MemoryDiskTest::keepsEverythingWhenTheFileSystemWasSynced()
{
    MemoryDisk disk(losingPower());
    const Handle root = must(disk.openPath("/"));
    const Handle folder = makeFolder(disk, root, "folder");
    write(disk, folder, "a", "text");
    must(disk.syncFileSystem(folder));

    const auto found = afterPowerCuts(disk, [](MemoryDisk &after, Handle top) {
        return content(after, must(after.openFolder(top, "folder")), "a");
    });

    const std::set<std::string> wanted{"text"};
    QCOMPARE(found, wanted);
}

QTEST_APPLESS_MAIN(MemoryDiskTest)
#include "MemoryDiskTest.moc"
