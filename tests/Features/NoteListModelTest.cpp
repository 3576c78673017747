// SPDX-License-Identifier: MIT
#include "NoteListModel.h"
#include "AppPreferences.h"
#include "MemoryNoteRepository.h"
#include "NoteId.h"
#include "NoteStore.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <numeric>

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
    void tellsWhereTheSearchFoundARow_data();
    void tellsWhereTheSearchFoundARow();
    void changesNothingForTheSameNotes();
    void takesRowsOutAndPutsThemInWhereFewDiffer();
    void isResetWhereManyRowsDiffer();
    void showsOtherTextsOfTheSameNotes();
    void findsTheRowOfANoteOrTheOneThatTookItsPlace();
};

namespace {

Note noteOf(const QString &body, double updatedAt = 0)
{
    return {QUuid::createUuid(), body, {}, Timestamp{updatedAt}};
}

/// All of them, in the order in which they are kept.
FoundNotes found(const QList<Note> &notes)
{
    QList<FoundNotes::Place> places(notes.size());
    std::iota(places.begin(), places.end(), FoundNotes::Place{0});
    return {notes, places};
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

    fixture.model.show(found(notes));
    fixture.model.show(found(notes));
    fixture.model.show(found({notes[2], notes[0]}));
    fixture.model.show(found({}));
    fixture.model.show(found(notes));

    QCOMPARE(fixture.model.rowCount(), 3);
}

void NoteListModelTest::givesTheTextsOfARow()
{
    Fixture fixture;
    Note note = noteOf(u"milk\nbread\n\nbutter"_s);
    note.updatedAt = Timestamp::fromIso8601(u"2025-03-01T20:05:00.000Z").value();

    fixture.model.show(found({note}));

    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"milk"_s);
    QCOMPARE(fixture.text(0, NoteListModel::excerptRole), u"bread butter"_s);
    QVERIFY(fixture.model.index(0).data(NoteListModel::hasExcerptRole).toBool());
    QCOMPARE(fixture.text(0, NoteListModel::metaRole).replace(u'\u202f', u' '), u"03/1, 8:05 PM"_s);
    QCOMPARE(fixture.text(0, Qt::AccessibleTextRole), u"Open note: milk"_s);
}

void NoteListModelTest::namesANoteWithoutATitleButNotToAReader()
{
    Fixture fixture;

    fixture.model.show(found({noteOf(u"\n\n"_s)}));

    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"Untitled idea"_s);
    QCOMPARE(fixture.text(0, Qt::AccessibleTextRole), u"Open note: "_s);
}

void NoteListModelTest::marksANoteWithAnUnsavedEdit()
{
    NoteSnapshot snapshot;
    snapshot.notes = {noteOf(u"milk"_s), noteOf(u"bread"_s)};
    snapshot.editingDrafts[canonicalText(snapshot.notes[1].id)] = QString();
    Fixture fixture(snapshot);

    fixture.model.show(found(snapshot.notes));

    QVERIFY(!fixture.text(0, NoteListModel::metaRole).contains(u"Editing draft"_s));
    QVERIFY(fixture.text(1, NoteListModel::metaRole).endsWith(u" · Editing draft"_s));
}

void NoteListModelTest::cutsTheTextsOfALongNote()
{
    Fixture fixture;
    const QString emoji = u"👍"_s;

    fixture.model.show(
        found({noteOf(emoji.repeated(100'000) + u'\n' + u"word "_s.repeated(100'000))}));

    const QString title = fixture.text(0, Qt::DisplayRole);
    QVERIFY(title.size() < 1000);
    QCOMPARE(title, emoji.repeated(title.size() / emoji.size()));
    QVERIFY(fixture.text(0, NoteListModel::excerptRole).size() < 1000);
}

void NoteListModelTest::showsTheNewTextsOfAnEditedNote()
{
    Fixture fixture;
    Note note = noteOf(u"milk"_s);
    fixture.model.show(found({note}));
    QCOMPARE(fixture.text(0, Qt::DisplayRole), u"milk"_s);

    note.body = u"eggs"_s;
    fixture.model.show(found({note}));

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

    fixture.model.show(::found({noteOf(body)}), query);

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

void NoteListModelTest::changesNothingForTheSameNotes()
{
    Fixture fixture;
    const FoundNotes notes = found({noteOf(u"milk"_s), noteOf(u"bread"_s)});
    fixture.model.show(notes);
    const QSignalSpy resets(&fixture.model, &QAbstractItemModel::modelReset);
    const QSignalSpy changes(&fixture.model, &QAbstractItemModel::dataChanged);
    const QSignalSpy rows(&fixture.model, &NoteListModel::rowsChanged);

    fixture.model.show(notes);

    QCOMPARE(resets.count(), 0);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(rows.count(), 0);
}

void NoteListModelTest::takesRowsOutAndPutsThemInWhereFewDiffer()
{
    Fixture fixture;
    QList<Note> notes;
    for (int i = 0; i < 20; ++i)
        notes.append(noteOf(u"%1\nmore"_s.arg(i)));
    const FoundNotes all = found(notes);
    FoundNotes fewer = all;
    fewer.remove(15, 5);
    fewer.remove(7, 1);
    fewer.remove(0, 3);
    const auto titles = [&] {
        QStringList rows;
        for (int row = 0; row < fixture.model.rowCount(); ++row)
            rows.append(fixture.text(row, Qt::DisplayRole));
        return rows;
    };
    fixture.model.show(all);
    const QStringList allTitles = titles();
    const QPersistentModelIndex kept = fixture.model.index(8);
    const QSignalSpy resets(&fixture.model, &QAbstractItemModel::modelReset);
    const QSignalSpy removed(&fixture.model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&fixture.model, &QAbstractItemModel::rowsInserted);

    fixture.model.show(fewer);
    QCOMPARE(removed.count(), 3);
    QCOMPARE(kept.row(), 4);
    QCOMPARE(titles(), allTitles.mid(3, 4) + allTitles.mid(8, 7));

    fixture.model.show(all);
    QCOMPARE(inserted.count(), 3);
    QCOMPARE(kept.row(), 8);
    QCOMPARE(titles(), allTitles);

    // Also where it is another list of notes: one is gone, and one is new.
    notes.removeAt(4);
    fixture.model.show(found(notes));
    QCOMPARE(kept.row(), 7);
    notes.prepend(noteOf(u"new"_s));
    fixture.model.show(found(notes));
    QCOMPARE(kept.row(), 8);
    QCOMPARE(titles().first(), u"new"_s);
    QVERIFY(!fixture.model.hasExcerpt(0));
    QVERIFY(fixture.model.hasExcerpt(1));
    QCOMPARE(resets.count(), 0);
}

void NoteListModelTest::isResetWhereManyRowsDiffer()
{
    Fixture fixture;
    QList<Note> notes;
    for (int i = 0; i < 100; ++i)
        notes.append(noteOf(u"note"_s));
    FoundNotes half = found(notes);
    for (int row = 99; row > 0; row -= 2)
        half.remove(row, 1);
    fixture.model.show(found(notes));
    const QSignalSpy resets(&fixture.model, &QAbstractItemModel::modelReset);
    const QSignalSpy removed(&fixture.model, &QAbstractItemModel::rowsRemoved);

    fixture.model.show(half);

    QCOMPARE(resets.count(), 1);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(fixture.model.rowCount(), 50);
}

void NoteListModelTest::showsOtherTextsOfTheSameNotes()
{
    Fixture fixture;
    QList<Note> notes{noteOf(u"milk"_s), noteOf(u"bread"_s)};
    fixture.model.show(found(notes));
    const QSignalSpy resets(&fixture.model, &QAbstractItemModel::modelReset);
    const QSignalSpy changes(&fixture.model, &QAbstractItemModel::dataChanged);

    notes[1].body = u"bread\nand butter"_s;
    fixture.model.show(found(notes));

    QCOMPARE(changes.count(), 1);
    QCOMPARE(resets.count(), 0);
    QVERIFY(fixture.model.hasExcerpt(1));
}

void NoteListModelTest::findsTheRowOfANoteOrTheOneThatTookItsPlace()
{
    Fixture fixture;
    const Note newest = noteOf(u"newest"_s, 30);
    const Note middle = noteOf(u"middle"_s, 20);
    const Note oldest = noteOf(u"oldest"_s, 10);
    fixture.model.show(found({newest, middle, oldest}));
    QCOMPARE(fixture.model.indexNear(middle).row(), 1);

    fixture.model.show(found({newest, oldest}));
    QCOMPARE(fixture.model.indexNear(middle).row(), 1);

    fixture.model.show(found({newest}));
    QCOMPARE(fixture.model.indexNear(middle).row(), 0);

    fixture.model.show(found({}));
    QVERIFY(!fixture.model.indexNear(middle).isValid());
}

QTEST_GUILESS_MAIN(NoteListModelTest)

#include "NoteListModelTest.moc"
