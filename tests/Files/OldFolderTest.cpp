// SPDX-License-Identifier: MIT
#include "OldFolder.h"

#include "DataFolder.h"
#include "FolderChange.h"

#include <QTest>

namespace fs = std::filesystem;

using Outcome = OldFolder::Outcome;

namespace {

constexpr auto never = FolderTree::Deadline::max();
constexpr auto atOnce = FolderTree::Deadline::min();

/// A folder of that many files, "Markdown/Notes/0000" and so on, and of one that changes.
void writeFiles(const DataFolder &data, int count)
{
    data.write("Markdown/changed", "old");
    for (int i = 0; i < count; ++i)
        data.write("Markdown/Notes/" + QByteArray::number(i).rightJustified(4, '0').toStdString(),
                   "kept");
}

/// Replaces the folder; what is left to be removed of it lies at ".stage".
OldFolder replaced(const DataFolder &data)
{
    FolderChange change(data, {{"", "changed", "new"}});
    if (!change.commit())
        qFatal("Nobody disturbed it.");
    return change.takeOldFolder();
}

/// Entries of the old folder and below it.
qsizetype left(const DataFolder &data)
{
    return data.holds(".stage")
               ? std::distance(fs::recursive_directory_iterator(data.path(".stage")), {})
               : 0;
}

} // namespace

class OldFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void removesAllOfItAtOnce();
    void removesItInSlices();
    void removesFoldersInSlices();
    void removesWhatOthersMayNotWrite();
    void keepsWhatCame_data();
    void keepsWhatCame();
    void keepsWhatCameBetweenSlices_data();
    void keepsWhatCameBetweenSlices();
    void leavesAFolderThatWasMovedAway_data();
    void leavesAFolderThatWasMovedAway();
    void leavesTheLiveFolderAlone();
};

void OldFolderTest::removesAllOfItAtOnce()
{
    const DataFolder data;
    writeFiles(data, 100);
    data.write("Markdown/photos/2025/a.jpg", "1");
    fs::create_symlink("/nowhere", data.path("Markdown/lost link"));
    QCOMPARE(::mkfifo(data.path("Markdown/pipe").c_str(), 0600), 0);
    OldFolder old = replaced(data);
    const int entries = data.count("");

    const Outcome outcome = old.remove(never);

    QVERIFY(outcome == Outcome::gone);
    QVERIFY(!data.holds(".stage"));
    QCOMPARE(data.count(""), entries - 1);
}

void OldFolderTest::removesItInSlices()
{
    const DataFolder data;
    writeFiles(data, 100);
    OldFolder old = replaced(data);
    QList<qsizetype> steps;

    Outcome outcome = Outcome::more;
    while (outcome == Outcome::more && steps.size() < 200) {
        const qsizetype before = left(data);
        outcome = old.remove(atOnce);
        steps.append(before - left(data));
    }

    QVERIFY(outcome == Outcome::gone);
    QVERIFY(!data.holds(".stage"));
    QVERIFY2(steps.size() >= 4, "It paid no heed to the deadline.");
    QVERIFY2(*std::ranges::max_element(steps) <= 32, "A slice was too large.");
}

void OldFolderTest::removesFoldersInSlices()
{
    const DataFolder data;
    data.write("Markdown/changed", "old");
    for (int folder = 0; folder < 15; ++folder) {
        for (int file = 0; file < 10; ++file)
            data.write("Markdown/folder " + std::to_string(folder) + "/" + std::to_string(file),
                       "kept");
    }
    OldFolder old = replaced(data);
    QList<qsizetype> steps;

    Outcome outcome = Outcome::more;
    while (outcome == Outcome::more && steps.size() < 200) {
        const qsizetype before = left(data);
        outcome = old.remove(atOnce);
        steps.append(before - left(data));
    }

    QVERIFY(outcome == Outcome::gone);
    QVERIFY2(*std::ranges::max_element(steps) <= 32, "A slice was too large.");
}

void OldFolderTest::removesWhatOthersMayNotWrite()
{
    const DataFolder data;
    data.write("Markdown/changed", "old");
    data.write("Markdown/closed/file", "1");
    fs::permissions(data.path("Markdown/closed/file"), fs::perms(0400));
    fs::permissions(data.path("Markdown/closed"), fs::perms(0500));
    OldFolder old = replaced(data);

    const Outcome outcome = old.remove(never);

    QVERIFY(outcome == Outcome::gone);
    QVERIFY(!data.holds(".stage"));
    QCOMPARE(data.read("Markdown/closed/file"), "1");
    fs::permissions(data.path("Markdown/closed"), fs::perms(0700));
}

void OldFolderTest::keepsWhatCame_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("a file added") << QByteArray("added");
    QTest::newRow("a file added in a folder") << QByteArray("Notes/added");
    QTest::newRow("a folder added") << QByteArray("Notes/folder/added");
    QTest::newRow("a file replaced") << QByteArray("Notes/0003");
    QTest::newRow("a file replaced that had changed") << QByteArray("changed");
}

void OldFolderTest::keepsWhatCame()
{
    QFETCH(const QByteArray, name);
    const DataFolder data;
    writeFiles(data, 10);
    OldFolder old = replaced(data);
    data.write(".stage/.temporary", "theirs");
    fs::create_directories(data.path(".stage/" + name.toStdString()).parent_path());
    fs::rename(data.path(".stage/.temporary"), data.path(".stage/" + name.toStdString()));

    const Outcome outcome = old.remove(never);

    QVERIFY(outcome == Outcome::needsAttention);
    QVERIFY(!data.holds(".stage"));
    QCOMPARE(data.read(".recovery/" + name.toStdString()), "theirs");
    // It is complete, so that it can be used instead of the new one.
    QCOMPARE(data.read(".recovery/Notes/0009"), "kept");
    QCOMPARE(data.read("Markdown/changed"), "new");
}

void OldFolderTest::keepsWhatCameBetweenSlices_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("added") << QByteArray("added");
    QTest::newRow("added in a folder") << QByteArray("Notes/added");
    QTest::newRow("added in a folder of its own") << QByteArray("Notes/folder/added");
    QTest::newRow("replaced") << QByteArray("Notes/0003");
}

void OldFolderTest::keepsWhatCameBetweenSlices()
{
    QFETCH(const QByteArray, name);
    const DataFolder data;
    writeFiles(data, 100);
    OldFolder old = replaced(data);
    QVERIFY(old.remove(atOnce) == Outcome::more);
    data.write(".stage/.temporary", "theirs");
    fs::create_directories(data.path(".stage/" + name.toStdString()).parent_path());
    fs::rename(data.path(".stage/.temporary"), data.path(".stage/" + name.toStdString()));

    const Outcome outcome = old.remove(never);

    QVERIFY(outcome == Outcome::needsAttention);
    QVERIFY(!data.holds(".stage"));
    QCOMPARE(data.read(".recovery/" + name.toStdString()), "theirs");
    QCOMPARE(data.read("Markdown/Notes/0003"), "kept");
}

void OldFolderTest::leavesAFolderThatWasMovedAway_data()
{
    QTest::addColumn<bool>("isBegun");

    QTest::newRow("before it is removed") << false;
    QTest::newRow("while it is removed") << true;
}

void OldFolderTest::leavesAFolderThatWasMovedAway()
{
    QFETCH(const bool, isBegun);
    const DataFolder data;
    writeFiles(data, 100);
    OldFolder old = replaced(data);
    if (isBegun)
        QVERIFY(old.remove(atOnce) == Outcome::more);
    fs::rename(data.path(".stage"), data.path("theirs"));
    // What has its name now is another's.
    data.write(".stage/Notes/0003", "another");
    const auto before = data.content();

    const Outcome outcome = old.remove(never);

    QVERIFY(outcome == Outcome::gone);
    QCOMPARE(data.content(), before);
}

void OldFolderTest::leavesTheLiveFolderAlone()
{
    const DataFolder data;
    writeFiles(data, 10);
    DataFolder::Content expected = data.content();
    expected["Markdown/changed"] = "fnew";
    const struct stat before = data.status("Markdown/Notes/0003");
    OldFolder old = replaced(data);

    QVERIFY(old.remove(never) == Outcome::gone);

    QCOMPARE(data.content(), expected);
    QCOMPARE(data.status("Markdown/Notes/0003").st_ino, before.st_ino);
    QCOMPARE(data.status("Markdown/Notes/0003").st_nlink, 1U);
}

QTEST_GUILESS_MAIN(OldFolderTest)
#include "OldFolderTest.moc"
