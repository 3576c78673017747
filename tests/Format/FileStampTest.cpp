// SPDX-License-Identifier: MIT
#include "FileStamp.h"

#include <QTest>

namespace {

constexpr std::int64_t millisecond = 1'000'000;
constexpr std::int64_t second = 1'000 * millisecond;

/// A moment in 2025 that is no whole second.
constexpr std::int64_t moment = 1'740'816'930 * second + 1;

FileStatus fileChangedAt(std::int64_t time)
{
    return {.identity = {.device = 1, .inode = 2},
            .kind = FileKind::file,
            .mode = 0600,
            .owner = 1000,
            .group = 1000,
            .size = 3,
            .accessed = time,
            .modified = time - 1,
            .changed = time};
}

using Alteration = void (*)(FileStatus &status);

} // namespace

Q_DECLARE_METATYPE(Alteration)

class FileStampTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isOfTheFileThatItWasMadeOf();
    void isOfNoFileByItself();
    void isOfNoFileThatChanged_data();
    void isOfNoFileThatChanged();
    void overlooksWhatTellsNothingOfTheContent();
    void isOfNoFileThatChangedJustBefore_data();
    void isOfNoFileThatChangedJustBefore();
};

void FileStampTest::isOfTheFileThatItWasMadeOf()
{
    const FileStatus file = fileChangedAt(moment);

    const FileStamp stamp(file, moment + second);

    QVERIFY(stamp.isOf(file));
}

void FileStampTest::isOfNoFileByItself()
{
    QVERIFY(!FileStamp().isOf(fileChangedAt(moment)));
    QVERIFY(!FileStamp().isOf(FileStatus()));
}

void FileStampTest::isOfNoFileThatChanged_data()
{
    QTest::addColumn<Alteration>("alter");

    QTest::newRow("device") << Alteration([](FileStatus &file) { ++file.identity.device; });
    QTest::newRow("inode") << Alteration([](FileStatus &file) { ++file.identity.inode; });
    QTest::newRow("size") << Alteration([](FileStatus &file) { ++file.size; });
    QTest::newRow("modified") << Alteration([](FileStatus &file) { ++file.modified; });
    QTest::newRow("modified earlier") << Alteration([](FileStatus &file) { --file.modified; });
    QTest::newRow("changed") << Alteration([](FileStatus &file) { ++file.changed; });
    QTest::newRow("changed earlier") << Alteration([](FileStatus &file) { --file.changed; });
}

void FileStampTest::isOfNoFileThatChanged()
{
    QFETCH(const Alteration, alter);
    const FileStamp stamp(fileChangedAt(moment), moment + second);
    FileStatus file = fileChangedAt(moment);

    alter(file);

    QVERIFY(!stamp.isOf(file));
}

void FileStampTest::overlooksWhatTellsNothingOfTheContent()
{
    const FileStamp stamp(fileChangedAt(moment), moment + second);
    FileStatus file = fileChangedAt(moment);

    file.accessed += second;

    QVERIFY(stamp.isOf(file));
}

void FileStampTest::isOfNoFileThatChangedJustBefore_data()
{
    QTest::addColumn<qint64>("changed");
    QTest::addColumn<qint64>("readAfter");
    QTest::addColumn<bool>("hasStamp");

    const qint64 whole = moment - 1;
    const qint64 settling = FileStamp::settlingTime;
    QTest::newRow("at once") << qint64(moment) << qint64(0) << false;
    QTest::newRow("before it changed") << qint64(moment) << qint64(-second) << false;
    QTest::newRow("a tick later") << qint64(moment) << qint64(10 * millisecond) << false;
    QTest::newRow("too soon by nothing") << qint64(moment) << settling << false;
    QTest::newRow("just late enough") << qint64(moment) << settling + 1 << true;
    QTest::newRow("whole second, a second later") << whole << qint64(second) << false;
    QTest::newRow("pair of seconds") << whole << qint64(2 * second) << false;
    QTest::newRow("whole second, too soon by nothing") << whole << qint64(3 * second) << false;
    QTest::newRow("whole second, late enough") << whole << qint64(3 * second) + 1 << true;
}

void FileStampTest::isOfNoFileThatChangedJustBefore()
{
    QFETCH(const qint64, changed);
    QFETCH(const qint64, readAfter);
    QFETCH(const bool, hasStamp);
    const FileStatus file = fileChangedAt(changed);

    const FileStamp stamp(file, changed + readAfter);

    QCOMPARE(stamp.isOf(file), hasStamp);
}

QTEST_GUILESS_MAIN(FileStampTest)
#include "FileStampTest.moc"
