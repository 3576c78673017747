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
         {"picture.png", "conflict.md", "a.swept", "~a", "bak", "\xff.md", "a (copy).md", "README"})
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

QTEST_GUILESS_MAIN(NeighbourTest)
#include "NeighbourTest.moc"
