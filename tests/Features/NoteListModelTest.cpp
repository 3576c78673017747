// SPDX-License-Identifier: MIT
#include "NoteListModel.h"
#include "AppPreferences.h"
#include "MemoryNoteRepository.h"
#include "NoteId.h"
#include "NoteStore.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class NoteListModelTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { qputenv("TZ", "UTC"); }

private Q_SLOTS:
    void isAProperModelWhateverItShows();
    void givesTheTextsOfARow();
    void namesANoteWithoutATitleButNotToAReader();
    void marksANoteWithAnUnsavedEdit();
    void cutsTheTextsOfALongNote();
    void showsTheNewTextsOfAnEditedNote();
    void isNotResetByTheSameNotes();
    void tellsWhereTheSearchFoundARow_data();
    void tellsWhereTheSearchFoundARow();
    void findsTheRowOfANoteOrTheOneThatTookItsPlace();
};

namespace {

Note noteOf(const QString &body, double updatedAt = 0)
{
    return {QUuid::createUuid(), body, {}, Timestamp{updatedAt}};
}

struct Fixture {
    explicit Fixture(NoteSnapshot snapshot = {})
        : store(std::make_unique<MemoryNoteRepository>(std::move(snapshot)))
    {
    }

    QString text(int row, int role) { return model.index(row).data(role).toString(); }

    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    NoteStore store;
    NoteListModel model{store, preferences};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::QtTest};
};

} // namespace

void NoteListModelTest::isAProperModelWhateverItShows()
{
    Fixture fixture;
    const QList<Note> notes{noteOf(u"a"_s), noteOf(u""_s), noteOf(u"c\nd"_s)};

    fixture.model.show(notes);
    fixture.model.show(notes);
    fixture.model.show({notes[2], notes[0]});
    fixture.model.show({});
    fixture.model.show(notes);

    QCOMPARE(fixture.model.rowCount(), 3);
}

void NoteListModelTest::givesTheTextsOfARow()
{
    Fixture fixture;
    Note note = noteOf(u"milk\nbread\n\nbutter"_s);
    note.updatedAt = Timestamp::fromIso8601(u"2025-03-01T20:05:00.000Z").value();

    fixture.model.show({note});

    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"milk"_s);
    QCOMPARE(fixture.text(0, NoteListModel::excerptRole), u"bread butter"_s);
    QVERIFY(fixture.model.index(0).data(NoteListModel::hasExcerptRole).toBool());
    QCOMPARE(fixture.text(0, NoteListModel::metaRole).replace(u'\u202f', u' '), u"03/1, 8:05 PM"_s);
    QCOMPARE(fixture.text(0, Qt::AccessibleTextRole), u"Open note: milk"_s);
}

void NoteListModelTest::namesANoteWithoutATitleButNotToAReader()
{
    Fixture fixture;

    fixture.model.show({noteOf(u"\n\n"_s)});

    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"Untitled idea"_s);
    QCOMPARE(fixture.text(0, Qt::AccessibleTextRole), u"Open note: "_s);
}

void NoteListModelTest::marksANoteWithAnUnsavedEdit()
{
    NoteSnapshot snapshot;
    snapshot.notes = {noteOf(u"milk"_s), noteOf(u"bread"_s)};
    snapshot.editingDrafts[canonicalText(snapshot.notes[1].id)] = QString();
    Fixture fixture(snapshot);

    fixture.model.show(snapshot.notes);

    QVERIFY(!fixture.text(0, NoteListModel::metaRole).contains(u"Editing draft"_s));
    QVERIFY(fixture.text(1, NoteListModel::metaRole).endsWith(u" · Editing draft"_s));
}

void NoteListModelTest::cutsTheTextsOfALongNote()
{
    Fixture fixture;
    const QString emoji = u"👍"_s;

    fixture.model.show({noteOf(emoji.repeated(100'000) + u'\n' + u"word "_s.repeated(100'000))});

    const QString title = fixture.text(0, Qt::DisplayRole);
    QVERIFY(title.size() < 1000);
    QCOMPARE(title, emoji.repeated(title.size() / emoji.size()));
    QVERIFY(fixture.text(0, NoteListModel::excerptRole).size() < 1000);
}

void NoteListModelTest::showsTheNewTextsOfAnEditedNote()
{
    Fixture fixture;
    Note note = noteOf(u"milk"_s);
    fixture.model.show({note});
    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"milk"_s);

    note.body = u"eggs"_s;
    fixture.model.show({note});

    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"eggs"_s);
}

void NoteListModelTest::tellsWhereTheSearchFoundARow_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("inTitle");
    QTest::addColumn<QStringList>("inExcerpt");
    const auto row = [](const char *name, const QString &body, const QString &query,
                        const QStringList &inTitle, const QStringList &inExcerpt) {
        QTest::newRow(name) << body << query << inTitle << inExcerpt;
    };
    row("both", u"Milk\nno milk, MILK"_s, u"milk"_s, {u"Milk"_s}, {u"milk"_s, u"MILK"_s});
    row("spaces around the query", u"Milk\nbread"_s, u"  milk "_s, {u"Milk"_s}, {});
    row("no search", u"Milk\nbread"_s, u"  "_s, {}, {});
    row("nothing over the end of a line", u"t\na\nb a b"_s, u"a b"_s, {}, {u"a b"_s});
    row("a tab is no space", u"a\tb a b"_s, u"a b"_s, {u"a b"_s}, {});
    row("the words for no title", u"\n"_s, u"idea"_s, {}, {});
}

void NoteListModelTest::tellsWhereTheSearchFoundARow()
{
    QFETCH(const QString, body);
    QFETCH(const QString, query);
    QFETCH(const QStringList, inTitle);
    QFETCH(const QStringList, inExcerpt);
    Fixture fixture;

    fixture.model.show({noteOf(body)}, query);

    const auto found = [&fixture](int textRole, int matchesRole) {
        const QString text = fixture.text(0, textRole);
        QStringList places;
        for (const TextRange place :
             fixture.model.index(0).data(matchesRole).value<QList<TextRange>>())
            places.append(text.sliced(place.start, place.length));
        return places;
    };
    QCOMPARE(found(Qt::DisplayRole, NoteListModel::titleMatchesRole), inTitle);
    QCOMPARE(found(NoteListModel::excerptRole, NoteListModel::excerptMatchesRole), inExcerpt);
}

void NoteListModelTest::isNotResetByTheSameNotes()
{
    Fixture fixture;
    const QList<Note> notes{noteOf(u"milk"_s), noteOf(u"bread"_s)};
    fixture.model.show(notes);
    QSignalSpy resets(&fixture.model, &QAbstractItemModel::modelReset);
    QSignalSpy changes(&fixture.model, &QAbstractItemModel::dataChanged);

    fixture.model.show(notes);

    QCOMPARE(resets.count(), 0);
    QCOMPARE(changes.count(), 1);
}

void NoteListModelTest::findsTheRowOfANoteOrTheOneThatTookItsPlace()
{
    Fixture fixture;
    const Note newest = noteOf(u"newest"_s, 30);
    const Note middle = noteOf(u"middle"_s, 20);
    const Note oldest = noteOf(u"oldest"_s, 10);
    fixture.model.show({newest, middle, oldest});
    QCOMPARE(fixture.model.indexNear(middle).row(), 1);

    fixture.model.show({newest, oldest});
    QCOMPARE(fixture.model.indexNear(middle).row(), 1);

    fixture.model.show({newest});
    QCOMPARE(fixture.model.indexNear(middle).row(), 0);

    fixture.model.show({});
    QVERIFY(!fixture.model.indexNear(middle).isValid());
}

QTEST_GUILESS_MAIN(NoteListModelTest)

#include "NoteListModelTest.moc"
