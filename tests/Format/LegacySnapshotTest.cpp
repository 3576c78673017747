// SPDX-License-Identifier: MIT
#include "LegacySnapshot.h"

#include "NoteId.h"
#include "Thrown.h"

#include <QScopeGuard>
#include <QTest>
#include <clocale>
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
    void readsKeysInAnyOrder();
    void readsNumbers_data();
    void readsNumbers();
    void readsNumbersWhateverTheLanguageWrites();
    void keepsAByteOrderMarkWithinAText();
    void followsAsManyValuesAsAPersonMeans();
    void saysInShortWhereADeepMistakeIs();
    void refusesOtherVersions_data();
    void refusesOtherVersions();
    void namesTheVersionOfAnotherShape_data();
    void namesTheVersionOfAnotherShape();
    void refusesWhatIsNotUtf8_data();
    void refusesWhatIsNotUtf8();
    void saysWhereTheMistakeIs_data();
    void saysWhereTheMistakeIs();
    void saysWhichValueIsWrong_data();
    void saysWhichValueIsWrong();
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
        R"("version": 1, "theme": {"a": [1, null, {"b": true}], "b": "\ud83e\udeb6", "version": "2",
            "c": [[], {}, -0, 1e999, 1e-999, 18446744073709551617, false]}, "": 0,)";

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

void LegacySnapshotTest::readsKeysInAnyOrder()
{
    const QByteArray other =
        R"({"notes": [{"updatedAt": 700000001, "createdAt": 700000000.5, "body": "one\ntwo",
            "id": "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"}],
            "editingDrafts": {"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F": "edit"},
            "captureDraft": "draft", "version": 1})";

    QCOMPARE(decodeLegacySnapshot(other), decodeLegacySnapshot(whole));
}

void LegacySnapshotTest::readsNumbers_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<double>("seconds");

    QTest::newRow("negative") << QByteArray("-700000000") << -700000000.0;
    QTest::newRow("0") << QByteArray("0") << 0.0;
    QTest::newRow("an exponent") << QByteArray("7.5E+8") << 750000000.0;
    QTest::newRow("a tiny number is no large one") << QByteArray("1e-400") << 0.0;
    QTest::newRow("many digits") << QByteArray("0.1000000000000000055511151231257827") << 0.1;
    // Rounded to a longer kind of number on the way, this would end in the middle of two doubles
    // and then at the lower one.
    QTest::newRow("just above the middle of two doubles")
        << QByteArray("700000000.000000059604644775390625000000000001")
        << 700000000.00000011920928955078125;
    QTest::newRow("the last second of the year 9999")
        << QByteArray("252423993599") << 252423993599.0;
}

void LegacySnapshotTest::readsNumbers()
{
    QFETCH(const QByteArray, number);
    QFETCH(const double, seconds);

    const NoteSnapshot snapshot = decodeLegacySnapshot(with("700000000.5", number));

    QVERIFY(snapshot.notes.first().createdAt.secondsSince2001 == seconds);
}

void LegacySnapshotTest::readsNumbersWhateverTheLanguageWrites()
{
    // A locale whose numbers have another sign than a point; most computers have none of them.
    const char *found = nullptr;
    for (const char *name : {"de_DE.UTF-8", "fr_FR.UTF-8", "ps_AF.UTF-8", "fa_IR.UTF-8"})
        found = found ? found : std::setlocale(LC_NUMERIC, name);
    if (!found)
        QSKIP("No such locale is installed");
    const auto restore = qScopeGuard([] { std::setlocale(LC_NUMERIC, "C"); });

    const NoteSnapshot snapshot = decodeLegacySnapshot(whole);

    QVERIFY(snapshot.notes.first().createdAt.secondsSince2001 == 700000000.5);
    QVERIFY(std::string_view(std::localeconv()->decimal_point) != ".");
}

void LegacySnapshotTest::keepsAByteOrderMarkWithinAText()
{
    const NoteSnapshot snapshot = decodeLegacySnapshot(with("\"draft\"", "\"\xEF\xBB\xBF\""));

    QCOMPARE(snapshot.captureDraft, u"\uFEFF"_s);
}

void LegacySnapshotTest::followsAsManyValuesAsAPersonMeans()
{
    const auto nested = [](int depth) {
        return with("\"version\": 1",
                    "\"version\": 1, \"x\": " + QByteArray(depth, '[') + QByteArray(depth, ']'));
    };

    // The file's own object is one more.
    QCOMPARE(decodeLegacySnapshot(nested(499)), decodeLegacySnapshot(whole));
    const auto error =
        thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(nested(500))); });
    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::jsonTooDeep);
}

void LegacySnapshotTest::saysInShortWhereADeepMistakeIs()
{
    QByteArray json = "{\"version\": 2";
    QByteArray end = "}";
    for (int i = 0; i < 498; ++i) {
        json += ", \"" + QByteArray(40, 'n') + "\": {\"a\": 1";
        end += '}';
    }

    const auto error = thrown<JsonError>([&] {
        static_cast<void>(decodeLegacySnapshot(json + ", \"place\": 1, \"place\": 2" + end));
    });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::jsonTwice);
    QVERIFY(error->description().size() < 250);
    QVERIFY(error->description().contains(u"nnn.place” comes twice."_s));
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

void LegacySnapshotTest::namesTheVersionOfAnotherShape_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("way");

    QTest::newRow("version first") << QByteArray(R"({"version": 2, "notes": {}})") << u"notes"_s;
    QTest::newRow("version last") << QByteArray(R"({"captureDraft": {"text": "x"}, "version": 2})")
                                  << u"captureDraft"_s;
    QTest::newRow("version alone") << QByteArray(R"({"version": 2})") << u"notes"_s;
    QTest::newRow("a note without its body")
        << with("\"version\": 1", "\"version\": 2").replace("\"body\"", "\"text\"")
        << u"notes[0].body"_s;
}

void LegacySnapshotTest::namesTheVersionOfAnotherShape()
{
    QFETCH(const QByteArray, json);
    QFETCH(const QString, way);

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::jsonOtherShape);
    QCOMPARE(error->message(), JsonError::otherShape(2, way).message());
}

void LegacySnapshotTest::refusesWhatIsNotUtf8_data()
{
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("in a text") << with("draft\"", "\xff\"");
    QTest::newRow("in a text that nobody asks for")
        << with("\"version\"", "\"x\": \"\xc3\", \"version\"");
    QTest::newRow("in a name") << with("\"version\"", "\"\xc0\x80\": 0, \"version\"");
    QTest::newRow("a surrogate") << with("draft\"", "\xed\xa0\x80\"");
    QTest::newRow("beyond the last character") << with("draft\"", "\xf4\x90\x80\x80\"");
    QTest::newRow("between the values") << with("\"version\"", "\x80 \"version\"");
    QTest::newRow("behind the end") << whole + "\xe2\x80";
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe{\0}\0", 6);
}

void LegacySnapshotTest::refusesWhatIsNotUtf8()
{
    QFETCH(const QByteArray, json);

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::notUtf8);
}

void LegacySnapshotTest::saysWhereTheMistakeIs_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint64>("line");
    QTest::addColumn<qint64>("column");
    const auto row = [](const char *name, const QByteArray &json, qint64 line, qint64 column) {
        QTest::newRow(name) << json << line << column;
    };

    row("nothing", "", 1, 1);
    row("only white space", "\n\n ", 3, 2);
    row("a word", "notes", 1, 2);
    row("a raw tab in a text", "{\"a\": \"x\ty\"}", 1, 9);
    row("a line break in a text", "{\"a\": \"x\ny\"}", 1, 9);
    row("a comma at the end", "{\"a\": 1,}", 1, 9);
    row("two commas", "{\"a\": 1,, \"b\": 1}", 1, 9);
    row("no comma", "{\"a\": 1\n \"b\": 1}", 2, 4);
    row("no colon", "{\"a\" 1}", 1, 6);
    row("a text without an end", "{\"a\": \"x", 1, 9);
    row("cut off", "{\r\n\"a\": 1", 2, 7);
    row("cut off before a value", "{\"a\":", 1, 6);
    row("an unknown escape", R"({"a": "\x41"})", 1, 9);
    row("a cut off escape", R"({"a": "\u00"})", 1, 12);
    row("half a surrogate pair", R"({"a": "\ud83e"})", 1, 14);
    row("half a pair before another escape", R"({"a": "\ud83e\n"})", 1, 15);
    row("a pair in the wrong order", R"({"a": "\udeb6\ud83e"})", 1, 13);
    row("half a pair in a name", R"({"\ud83e": 1})", 1, 9);
    row("a leading zero", "{\"a\": 07}", 1, 8);
    row("a number that ends at its point", "{\"a\": 7.}", 1, 9);
    row("a number that begins with a point", "{\"a\": .7}", 1, 7);
    row("a plus sign", "{\"a\": +7}", 1, 7);
    row("a comma for the point", "{\"a\": 7,5}", 1, 9);
    row("NaN", "{\"a\": NaN}", 1, 7);
    row("single quotation marks", "{'a': 1}", 1, 2);
    row("a comment", "{} // end", 1, 4);
    row("more behind", "{}\n{}", 2, 1);
    row("another bracket", "{\"a\": [1}", 1, 9);
    row("columns are characters", "{\"甲\": \"🪶乙\t\"}", 1, 10);
    row("a mark at the beginning is no column", "\xEF\xBB\xBF[1,]", 1, 4);
    row("two marks at the beginning", "\xEF\xBB\xBF\xEF\xBB\xBF{}", 1, 1);
    row("NUL", QByteArray("{\0}", 3), 1, 2);
    row("NUL in a text", QByteArray("[\"\0\"]", 5), 1, 3);
    row("NUL behind the end", "{}\n" + QByteArray("\0", 1), 2, 1);
    row("text behind a NUL", whole + '\n' + QByteArray("\0 more", 6), 3, 1);
}

void LegacySnapshotTest::saysWhereTheMistakeIs()
{
    QFETCH(const QByteArray, json);
    QFETCH(const qint64, line);
    QFETCH(const qint64, column);

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::jsonSyntax);
    QCOMPARE(error->description(), JsonError::syntax(line, column).description());
}

void LegacySnapshotTest::saysWhichValueIsWrong_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Reason>("reason");
    QTest::addColumn<QString>("way");
    const auto missing = [](const char *name, const QByteArray &json, const QString &way) {
        QTest::newRow(name) << json << Reason::jsonMissing << way;
    };
    missing("no version", with("\"version\"", "\"revision\""), u"version"_s);
    missing("no notes", with("\"notes\"", "\"texts\""), u"notes"_s);
    missing("no captureDraft", with("\"captureDraft\"", "\"draft\""), u"captureDraft"_s);
    missing("no editingDrafts", with("\"editingDrafts\"", "\"drafts\""), u"editingDrafts"_s);
    missing("nothing at all", "{}", u"version"_s);
    missing("a note without an identifier", with("\"id\"", "\"name\""), u"notes[0].id"_s);
    missing("a note without a body", with("\"body\"", "\"text\""), u"notes[0].body"_s);
    missing("a note without its creation", with("\"createdAt\"", "\"created\""),
            u"notes[0].createdAt"_s);
    missing("a note without its change", with("\"updatedAt\"", "\"updated\""),
            u"notes[0].updatedAt"_s);
    missing("an empty second note", with("700000001}", "700000001}, {}"), u"notes[1].id"_s);

    const auto twice = [](const char *name, const QByteArray &json, const QString &way) {
        QTest::newRow(name) << json << Reason::jsonTwice << way;
    };
    twice("version twice", with("\"version\": 1", "\"version\": 1, \"version\": 1"), u"version"_s);
    twice("two versions", with("\"version\": 1", "\"version\": 1, \"version\": 2"), u"version"_s);
    twice("notes twice", with("\"notes\"", "\"notes\": [], \"notes\""), u"notes"_s);
    twice("a body twice", with("\"body\"", "\"body\": \"\", \"body\""), u"notes[0].body"_s);
    twice("an unknown key twice", with("\"version\"", "\"x\": 0, \"x\": 0, \"version\""), u"x"_s);
    twice("a name in an unknown value twice",
          with("\"version\"", R"("x": [{"a": 1, "b": {"a": 1}, "\u0061": 1}], "version")"),
          u"x[0].a"_s);
    twice("a draft twice", with("{\"" + idText, "{\"" + idText + "\": \"\", \"" + idText),
          u"editingDrafts."_s + QString::fromLatin1(idText));
    twice("a draft twice, once in lower case",
          with("{\"" + idText, "{\"" + idText.toLower() + "\": \"\", \"" + idText),
          u"editingDrafts."_s + QString::fromLatin1(idText));

    const auto wrong = [](const char *name, const QByteArray &json, const QString &way) {
        QTest::newRow(name) << json << Reason::jsonWrongValue << way;
    };
    for (const char *version :
         {"\"1\"", "null", "true", "[1]", "{}", "1.5", "1e-400", "1.00000000000000000001", "1e999",
          "9223372036854775808", "18446744073709551615", "18446744073709551617",
          "-9223372036854775809", "9007199254740993.0"}) {
        QTest::addRow("version %s", version)
            << with("\"version\": 1", QByteArray("\"version\": ") + version)
            << Reason::jsonWrongValue << u"version"_s;
    }
    for (const char *time : {"\"2025-03-01\"", "null", "1e999", "1e15", "252423993600", "-1e12",
                             "-18446744073709551617"}) {
        QTest::addRow("time %s", time)
            << with("700000000.5", time) << Reason::jsonWrongValue << u"notes[0].createdAt"_s;
    }
    wrong("a file that is a list", "[]", {});
    wrong("a file that is a number", "1", {});
    wrong("a file that is a text", "\"{}\"", {});
    wrong("a draft that is null", with("\"draft\"", "null"), u"captureDraft"_s);
    wrong("an edit that is a list", with("\"edit\"", "[\"edit\"]"),
          u"editingDrafts."_s + QString::fromLatin1(idText));
    wrong("drafts that are a list", with("{\"" + idText + "\": \"edit\"}", "[]"),
          u"editingDrafts"_s);
    wrong("notes that are an object", with("[{", "{\"0\": {").replace("}]", "}}"), u"notes"_s);
    wrong("a note that is a text", with("[{", "[\"note\", {"), u"notes[0]"_s);
    wrong("a note that is a list", with("[{", "[[], {"), u"notes[0]"_s);
    wrong("a body that is a number", with("\"one\\ntwo\"", "12"), u"notes[0].body"_s);
    wrong("an identifier of something else", with("\"id\": \"8C5B", "\"id\": \"ZZZZ"),
          u"notes[0].id"_s);
    wrong("an identifier in braces",
          with("\"id\": \"" + idText + "\"", "\"id\": \"{" + idText + "}\""), u"notes[0].id"_s);
    wrong("the first of two", with("\"version\": 1", "\"version\": null").replace("[{", "[0, {"),
          u"version"_s);

    QTest::newRow("far too deep") << with("\"version\": 1",
                                          "\"version\": 1, \"x\": " + QByteArray(100'000, '['))
                                  << Reason::jsonTooDeep << u"x"_s + u"[0]"_s.repeated(499);
}

void LegacySnapshotTest::saysWhichValueIsWrong()
{
    QFETCH(const QByteArray, json);
    QFETCH(const Reason, reason);
    QFETCH(const QString, way);

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), reason);
    QCOMPARE(error->description(), JsonError::atWay(reason, way).description());
}

void LegacySnapshotTest::saysItShortly()
{
    QByteArray json = R"({"version": 1, "notes": [)";
    for (int depth = 0; depth < 499; ++depth)
        json += "{\"" + QByteArray(1'000, 'k') + "\": ";
    json += R"({"a": 1, "a": 2})";

    const auto error = thrown<JsonError>([&] { static_cast<void>(decodeLegacySnapshot(json)); });

    QVERIFY(error.has_value());
    QVERIFY(error->description().size() < 220);
}

QTEST_GUILESS_MAIN(LegacySnapshotTest)
#include "LegacySnapshotTest.moc"
