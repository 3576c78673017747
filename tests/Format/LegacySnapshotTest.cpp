// SPDX-License-Identifier: MIT
#include "LegacySnapshot.h"

#include "NoteId.h"
#include "Thrown.h"

#include <QTest>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray idText = "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F";

const QByteArray whole =
    R"({"version": 1, "captureDraft": "draft", "editingDrafts": {"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F": "edit"},
 "notes": [{"id": "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F", "body": "one\ntwo", "createdAt": 700000000.5, "updatedAt": 700000001}]})";

QByteArray with(const QByteArray &before, const QByteArray &after)
{
    Q_ASSERT(whole.contains(before));
    return QByteArray(whole).replace(before, after);
}

} // namespace

class LegacySnapshotTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheWholeState();
    void ignoresUnknownKeys();
    void ignoresAByteOrderMark();
    void readsAnIdentifierOfLowerCase();
    void readsEscapes();
    void keepsDraftsUnderTheCanonicalText();
    void keepsAKeyThatIsNoIdentifier();
    void refusesOtherVersions_data();
    void refusesOtherVersions();
    void refuses_data();
    void refuses();
    void saysWhereTheErrorIs();
    void saysItShortly();
};

void LegacySnapshotTest::readsTheWholeState()
{
    const NoteSnapshot snapshot = decodeLegacySnapshot(whole);

    const QString id = QString::fromLatin1(idText);
    const NoteSnapshot expected{.version = 1,
                                .notes = {{QUuid(id), u"one\ntwo"_s, {700000000.5}, {700000001.0}}},
                                .captureDraft = u"draft"_s,
                                .editingDrafts = {{id, u"edit"_s}}};
    QCOMPARE(snapshot, expected);
}

void LegacySnapshotTest::ignoresUnknownKeys()
{
    const QByteArray more =
        R"("version": 1, "theme": {"a": [1, null, {"b": true}], "a": "\ud83e\udeb6"},)";

    QCOMPARE(decodeLegacySnapshot(with("\"version\": 1,", more)), decodeLegacySnapshot(whole));
    QCOMPARE(decodeLegacySnapshot(with("\"body\"", "\"colour\": false, \"body\"")),
             decodeLegacySnapshot(whole));
}

void LegacySnapshotTest::ignoresAByteOrderMark()
{
    QCOMPARE(decodeLegacySnapshot("\xEF\xBB\xBF" + whole), decodeLegacySnapshot(whole));
}

void LegacySnapshotTest::readsAnIdentifierOfLowerCase()
{
    QCOMPARE(decodeLegacySnapshot(with("\"id\": \"" + idText, "\"id\": \"" + idText.toLower())),
             decodeLegacySnapshot(whole));
}

void LegacySnapshotTest::readsEscapes()
{
    const QByteArray escapes = R"(\"\\\/\b\f\n\r\t\u0000\u00e9\ud83e\udeb6)";

    QCOMPARE(decodeLegacySnapshot(with("\"draft\"", "\"" + escapes + "\"")).captureDraft,
             QString(u"\"\\/\b\f\n\r\t\0é🪶"_s));
}

void LegacySnapshotTest::keepsDraftsUnderTheCanonicalText()
{
    QCOMPARE(decodeLegacySnapshot(with("{\"" + idText, "{\"" + idText.toLower())),
             decodeLegacySnapshot(whole));
}

void LegacySnapshotTest::keepsAKeyThatIsNoIdentifier()
{
    // It is refused when the snapshot is written.
    QCOMPARE(decodeLegacySnapshot(with("{\"" + idText, "{\"other")).editingDrafts.keys(),
             QStringList(u"other"_s));
}

void LegacySnapshotTest::refusesOtherVersions_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<qint64>("version");

    QTest::newRow("2") << QByteArray("2") << qint64(2);
    QTest::newRow("0") << QByteArray("0") << qint64(0);
    QTest::newRow("-1") << QByteArray("-1") << qint64(-1);
    QTest::newRow("2.0") << QByteArray("2.0") << qint64(2);
    QTest::newRow("above 2^53") << QByteArray("9007199254740993") << qint64(9007199254740993);
    QTest::newRow("largest") << QByteArray("9223372036854775807")
                             << std::numeric_limits<qint64>::max();
    QTest::newRow("smallest") << QByteArray("-9223372036854775808")
                              << std::numeric_limits<qint64>::min();
}

void LegacySnapshotTest::refusesOtherVersions()
{
    QFETCH(QByteArray, number);
    QFETCH(qint64, version);

    const auto error = refusal([&] {
        static_cast<void>(decodeLegacySnapshot(with("\"version\": 1", "\"version\": " + number)));
    });

    QVERIFY(error.has_value());
    QCOMPARE(*error, RepositoryError::unsupportedVersion(version));
}

void LegacySnapshotTest::refuses_data()
{
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("notes");
    QTest::newRow("not UTF-8") << with("draft\"", "\xff\"");
    QTest::newRow("another kind of value") << QByteArray("[]");
    QTest::newRow("more behind") << whole + " {}";
    QTest::newRow("cut off") << whole.chopped(1);
    QTest::newRow("a comma too many") << with("\"draft\",", "\"draft\",,");
    QTest::newRow("no editingDrafts") << with("\"editingDrafts\"", "\"drafts\"");
    QTest::newRow("no version") << with("\"version\"", "\"revision\"");
    QTest::newRow("no notes") << with("\"notes\"", "\"texts\"");
    QTest::newRow("no captureDraft") << with("\"captureDraft\"", "\"draft\"");
    QTest::newRow("a note without an identifier") << with("\"id\"", "\"name\"");
    QTest::newRow("a note without a body") << with("\"body\"", "\"text\"");
    QTest::newRow("a note without its creation") << with("\"createdAt\"", "\"created\"");
    QTest::newRow("a note without its change") << with("\"updatedAt\"", "\"updated\"");
    QTest::newRow("a draft that is null") << with("\"draft\"", "null");
    QTest::newRow("a version that is a text") << with("\"version\": 1", "\"version\": \"1\"");
    QTest::newRow("a version with a fraction") << with("\"version\": 1", "\"version\": 1.5");
    QTest::newRow("a version of 2^63")
        << with("\"version\": 1", "\"version\": 9223372036854775808");
    QTest::newRow("a version of 2^64 + 1")
        << with("\"version\": 1", "\"version\": 18446744073709551617");
    QTest::newRow("a version that a double rounds")
        << with("\"version\": 1", "\"version\": 9007199254740993.0");
    QTest::newRow("a key twice") << with("\"version\": 1", "\"version\": 1, \"version\": 1");
    QTest::newRow("a key of a note twice") << with("\"body\"", "\"body\": \"\", \"body\"");
    QTest::newRow("a draft twice, once in lower case")
        << with("{\"" + idText, "{\"" + idText.toLower() + "\": \"\", \"" + idText);
    QTest::newRow("an identifier in braces")
        << with("\"id\": \"" + idText + "\"", "\"id\": \"{" + idText + "}\"");
    QTest::newRow("a time that is a text") << with("700000000.5", "\"2025-03-01\"");
    QTest::newRow("a time too large for a double") << with("700000000.5", "1e999");
    QTest::newRow("a time after the year 9999") << with("700000000.5", "1e15");
    QTest::newRow("a time before the year 0") << with("700000000.5", "-1e12");
    QTest::newRow("a number with a leading zero") << with("700000000.5", "07");
    QTest::newRow("a number that ends at its point") << with("700000000.5", "7.");
    QTest::newRow("NaN") << with("700000000.5", "NaN");
    QTest::newRow("half a surrogate pair") << with("draft\"", "\\ud83e\"");
    QTest::newRow("surrogates in the wrong order") << with("draft\"", "\\udeb6\\ud83e\"");
    QTest::newRow("an unknown escape") << with("draft\"", "\\x41\"");
    QTest::newRow("a cut off escape") << with("draft\"", "\\u00\"");
    QTest::newRow("a line break within a text") << with("draft\"", "\n\"");
    QTest::newRow("depth") << with("\"version\": 1",
                                   "\"x\": " + QByteArray(100'000, '[') + ", \"version\": 1");
}

void LegacySnapshotTest::refuses()
{
    QFETCH(QByteArray, json);

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QVERIFY(error->description().contains(u"notes.json"_s));
}

void LegacySnapshotTest::saysItShortly()
{
    const QByteArray json = R"({"x": [0, {")" + QByteArray(1'000'000, 'k') + R"(": nothing}]})";

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->place(), u"x[1]."_s + QString(40, u'k') + u'…');
    QCOMPARE(error->problem(), JsonError::Problem::notValue);
}

void LegacySnapshotTest::saysWhereTheErrorIs()
{
    const QByteArray json = with("\"id\": \"8C5B", "\"id\": \"ZZZZ");

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->place(), u"notes[0].id"_s);
    QCOMPARE(error->problem(), JsonError::Problem::notIdentifier);
}

QTEST_GUILESS_MAIN(LegacySnapshotTest)
#include "LegacySnapshotTest.moc"
