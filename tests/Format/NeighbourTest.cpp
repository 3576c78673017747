// SPDX-License-Identifier: MIT
#include "Neighbour.h"

#include <QTest>

/// What a file beside the notes is taken for.
class NeighbourTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isToldByItsName_data();
    void isToldByItsName();
    void isNoLockUnlessItIsALink();
    void conflictNamesTellWhatTheFileWasCalled_data();
    void conflictNamesTellWhatTheFileWasCalled();
};

Q_DECLARE_METATYPE(Neighbour)

void NeighbourTest::isToldByItsName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<Neighbour>("neighbour");

    for (const char *name : {".~lock.note.md#", ".note.md.swp", ".note.md.swo"})
        QTest::newRow(name) << QByteArray(name) << Neighbour::editorLock;
    for (const char *name :
         {"a.sync-conflict-20250301-081530-ABCDEFG.md", "a (conflicted copy 2025-03-01 081530).md",
          "a (Anna's conflicted copy 2025-03-01).md",
          "a (Anna's Conflicted Copy 2025-03-01 (1)).md", "a_conflict-20250301-081530.md",
          "a.md.conflict1", "a.conflict2.md", "a.md..path1"})
        QTest::newRow(name) << QByteArray(name) << Neighbour::conflictCopy;
    for (const char *name :
         {"a.md~", "a.bak", "a.BAK", "a.md.orig", "#a.md#", "a.md.~1~", "a.old.md"})
        QTest::newRow(name) << QByteArray(name) << Neighbour::backup;
    for (const char *name :
         {".stfolder", ".stignore", ".git", ".sync_0a1b2c3d4e5f.db", "._sync_0a1b2c3d4e5f.db",
          "._sync_0a1b2c3d4e5f.db-wal", ".nextcloudsync.log", ".owncloudsync.log", ".dropbox",
          ".dropbox.cache", "RCLONE_TEST"})
        QTest::newRow(name) << QByteArray(name) << Neighbour::syncMarker;
    for (const char *name : {"sync.md", ".gitignore", "picture.png", "conflict.md", "a.swept", "~a",
                             "bak", "\xff.md", "a (copy).md", "README"})
        QTest::newRow(name) << QByteArray(name) << Neighbour::none;
}

void NeighbourTest::isToldByItsName()
{
    QFETCH(QByteArray, name);
    QFETCH(Neighbour, neighbour);

    QCOMPARE(neighbourOf(name.toStdString(), FileKind::file), neighbour);
}

void NeighbourTest::isNoLockUnlessItIsALink()
{
    QCOMPARE(neighbourOf(".#a.md", FileKind::link), Neighbour::editorLock);
    QCOMPARE(neighbourOf(".#a.md", FileKind::file), Neighbour::none);
}

void NeighbourTest::conflictNamesTellWhatTheFileWasCalled_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("engine");
    QTest::addColumn<QByteArray>("original");

    const auto row = [](const char *name, const char *engine, const char *original) {
        QTest::newRow(name) << QByteArray(name) << QByteArray(engine) << QByteArray(original);
    };
    row("a.sync-conflict-20250301-081530-ABCDEFG.md", "Syncthing", "a.md");
    row("a.sync-conflict-20250301-081530.md", "Syncthing", "a.md");
    row("a.b.sync-conflict-20250301-081530-ABCDEFG", "Syncthing", "a.b");
    row("a.sync-conflict-20250301-081530-ABCDEFG.sync-conflict-20250302-081530-GFEDCBA.md",
        "Syncthing", "a.md");
    row("\xff.sync-conflict-20250301-081530-ABCDEFG.md", "Syncthing", "\xff.md");
    row("a (conflicted copy 2025-03-01 081530).md", "Nextcloud", "a.md");
    row("a (conflicted copy anna 2025-03-01 081530).md", "Nextcloud", "a.md");
    row("a_conflict-20250301-081530.md", "Nextcloud", "a.md");
    row("a_conflict-anna-20250301-081530.md", "Nextcloud", "a.md");
    row("a (Anna's conflicted copy 2025-03-01).md", "Dropbox", "a.md");
    row("a (Anna's Conflicted Copy 2025-03-01 (1)).md", "Dropbox", "a.md");
    row("a (Anna (home)'s conflicted copy).md", "Dropbox", "a.md");
    row("a.md..path1", "rclone", "a.md");
    row("a.md..path2", "rclone", "a.md");
    row("a.md.path2", "rclone", "a.md");
    row("a.path1.md", "rclone", "a.md");
    row("a.md.conflict1", "rclone", "a.md");
    row("a.conflict12.md", "rclone", "a.md");
    for (const char *none : {"a.md", "a.md..path3", "a.sync-conflict-2025-081530.md",
                             "a.conflict.md", ".sync-conflict-20250301-081530-ABCDEFG.md"})
        row(none, "", "");
}

void NeighbourTest::conflictNamesTellWhatTheFileWasCalled()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, engine);
    QFETCH(QByteArray, original);

    const auto found = conflictNameOf(name.toStdString());

    QCOMPARE(found ? QByteArray(ConflictName::nameOf(found->engine)) : QByteArray(), engine);
    QCOMPARE(found ? QByteArray::fromStdString(found->original) : QByteArray(), original);
}

QTEST_GUILESS_MAIN(NeighbourTest)
#include "NeighbourTest.moc"
