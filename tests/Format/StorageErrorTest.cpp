// SPDX-License-Identifier: MIT
#include "FileError.h"
#include "JsonError.h"
#include "RepositoryError.h"

#include <QSet>
#include <QTest>
#include <cerrno>
#include <limits>

using namespace Qt::Literals::StringLiterals;

class StorageErrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesTheVersionThatIsNotSupported_data();
    void namesTheVersionThatIsNotSupported();
    void describesTheOtherRefusals();
    void tellsRefusalsApart();
    void namesTheFileInEveryMessage();
    void saysADifferentThingForEachReason();
    void showsANameThatIsNotUtf8();
    void showsBothEndsOfALongPath();
    void saysWhatIsWrongWithTheOlderFile();
    void showsBothEndsOfALongWay();
};

void StorageErrorTest::namesTheVersionThatIsNotSupported_data()
{
    QTest::addColumn<qint64>("version");
    QTest::addColumn<QString>("digits");

    QTest::newRow("2") << qint64(2) << u"2"_s;
    QTest::newRow("-1") << qint64(-1) << u"-1"_s;
    QTest::newRow("largest") << std::numeric_limits<qint64>::max() << u"9223372036854775807"_s;
}

void StorageErrorTest::namesTheVersionThatIsNotSupported()
{
    QFETCH(qint64, version);
    QFETCH(QString, digits);

    const RepositoryError error = RepositoryError::unsupportedVersion(version);

    QCOMPARE(error.version(), version);
    QCOMPARE(error.description(),
             u"Unsupported note version: "_s + digits + u". Original files were left untouched."_s);
}

void StorageErrorTest::describesTheOtherRefusals()
{
    QCOMPARE(RepositoryError::invalidMarkdown().description(),
             u"A Markdown file has invalid metadata. Original files were left untouched."_s);
    QCOMPARE(
        RepositoryError::externalChange().description(),
        u"Notes changed outside Quillmark. Copy your pending text and reopen the app to reload "
        "the files."_s);
    QCOMPARE(
        RepositoryError::recoveryRequired().description(),
        u"A recovery copy needs attention. Original files were preserved in the data folder."_s);
}

void StorageErrorTest::tellsRefusalsApart()
{
    QCOMPARE(RepositoryError::unsupportedVersion(2), RepositoryError::unsupportedVersion(2));
    QVERIFY(!(RepositoryError::unsupportedVersion(2) == RepositoryError::unsupportedVersion(3)));
    QVERIFY(!(RepositoryError::externalChange() == RepositoryError::recoveryRequired()));
}

void StorageErrorTest::namesTheFileInEveryMessage()
{
    const std::filesystem::path path("/notes/one.md");
    for (const int code : {ENOSPC, EDQUOT, EFBIG, EACCES, EPERM, EROFS, EMFILE, ENFILE, ENOENT, EIO,
                           ENAMETOOLONG, ELOOP})
        QVERIFY2(FileError(path, code).description().contains(u"/notes/one.md"_s), strerror(code));
    QVERIFY(FileError(path, ELOOP).description().contains(QString::fromLocal8Bit(strerror(ELOOP))));
}

void StorageErrorTest::saysADifferentThingForEachReason()
{
    QSet<QString> keys;
    for (const Reason reason :
         {Reason::notUtf8, Reason::notRegularFile, Reason::notFolder, Reason::mountPoint,
          Reason::tooLarge, Reason::tooManyNotes, Reason::tooMuchText, Reason::tooDeep,
          Reason::busy, Reason::inUse, Reason::editorLock, Reason::lowerLayer, Reason::secondDraft,
          Reason::notUnicode, Reason::outOfReach}) {
        const Message message = FileError("/notes/one.md", reason).message();
        QVERIFY(message.key.contains(u"%@"_s));
        QVERIFY(message.english().contains(u"/notes/one.md"_s));
        keys.insert(message.key);
    }
    for (const int code :
         {ENOSPC, EDQUOT, EFBIG, EACCES, EROFS, EMFILE, ENOENT, EIO, ENAMETOOLONG, ELOOP})
        keys.insert(FileError("/notes/one.md", code).message().key);

    QCOMPARE(keys.size(), 25);
}

void StorageErrorTest::showsANameThatIsNotUtf8()
{
    QVERIFY(FileError("/notes/\xff.md", ENOENT).description().contains(u"/notes/\uFFFD.md"_s));
}

void StorageErrorTest::showsBothEndsOfALongPath()
{
    const FileError error("/home/" + std::string(4'000, 'd') + "/one.md", ENOSPC);

    QVERIFY(error.description().contains(u"“/home/ddd"_s));
    QVERIFY(error.description().contains(u"ddd/one.md”"_s));
    QVERIFY(error.description().size() < 400);
    QCOMPARE(error.path().native().size(), 4'013U);
}

void StorageErrorTest::saysWhatIsWrongWithTheOlderFile()
{
    const auto says = [](const JsonError &error, QStringView text) {
        return error.description().contains(u"notes.json"_s) && error.description().contains(text);
    };
    const QString way = u"notes[3].id"_s;

    QVERIFY(says(JsonError::notUtf8(), u"“notes.json” is not UTF-8 text."));
    QVERIFY(says(JsonError::syntax(2, 14), u": there is a mistake in line 2, column 14."));
    QVERIFY(says(JsonError::atWay(Reason::jsonMissing, way), u": “notes[3].id” is missing."));
    QVERIFY(says(JsonError::atWay(Reason::jsonTwice, way), u": “notes[3].id” comes twice."));
    QVERIFY(
        says(JsonError::atWay(Reason::jsonWrongValue, way), u": “notes[3].id” has a wrong value."));
    QVERIFY(
        says(JsonError::atWay(Reason::jsonTooDeep, way), u": “notes[3].id” is nested too deeply."));
    QVERIFY(says(JsonError::otherShape(2, way),
                 u"has version 2 and cannot be read: “notes[3].id” is not as in version 1."));
}

void StorageErrorTest::showsBothEndsOfALongWay()
{
    const auto shown = [](const QString &way) {
        const Message message = JsonError::atWay(Reason::jsonWrongValue, way).message();
        return std::get<QString>(message.arguments.first());
    };
    const QString longest(59, u'k');

    QCOMPARE(shown(longest), longest);
    QCOMPARE(shown(u"notes[3]."_s + longest + u".id"_s),
             u"notes[3]."_s + QString(20, u'k') + u'…' + QString(26, u'k') + u".id"_s);
    QVERIFY(shown(QString(28, u'k') + u"🪶"_s.repeated(3) + QString(28, u'k')).isValidUtf16());
    QVERIFY(shown(QString(28, u'k') + u"🪶"_s.repeated(3) + QString(28, u'k')).contains(u'…'));
}

QTEST_GUILESS_MAIN(StorageErrorTest)
#include "StorageErrorTest.moc"
