// SPDX-License-Identifier: MIT
#include "Note.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class NoteTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasNeitherTitleNorExcerptWhenTheBodyIsOnlyLineBreaks();
    void passesOverEmptyLinesForTitleAndExcerpt();
    void takesALineOfSpacesAsTheTitleUntrimmed();
    void takesALongLineToItsEnd();
    void hasNoExcerptWhenTheBodyIsOneLine();
    void saysWhetherThereIsAnExcerptWithoutMakingIt();
    void endsALineAtEachKindOfLineBreak_data();
    void endsALineAtEachKindOfLineBreak();
    void endsALineNowhereElse();
    void differsWhenAnyFieldDiffers();
    void startsAsAnEmptySnapshotOfTheCurrentVersion();
    void isAnotherSnapshotWhenAnyFieldDiffers();
};

namespace {

Note noteOf(const QString &body)
{
    return {QUuid::createUuid(), body, {}, {}};
}

} // namespace

void NoteTest::hasNeitherTitleNorExcerptWhenTheBodyIsOnlyLineBreaks()
{
    const Note note = noteOf(u"\n\r\n\u2028\n"_s);

    QCOMPARE(note.title(), QString());
    QCOMPARE(note.excerpt(), QString());
}

void NoteTest::passesOverEmptyLinesForTitleAndExcerpt()
{
    const Note note = noteOf(u"\n\nfirst\n\nsecond\nthird"_s);

    QCOMPARE(note.title(), u"first"_s);
    QCOMPARE(note.excerpt(), u"second third"_s);
}

void NoteTest::takesALineOfSpacesAsTheTitleUntrimmed()
{
    const Note note = noteOf(u"\n   \n  second "_s);

    QCOMPARE(note.title(), u"   "_s);
    QCOMPARE(note.excerpt(), u"  second "_s);
}

void NoteTest::takesALongLineToItsEnd()
{
    for (int length = 0; length < 100; ++length) {
        const QString title(length, u'x');
        QCOMPARE(noteOf(u'x' + title + u'\n' + QString(64, u'y')).title(), u'x' + title);
    }
}

void NoteTest::hasNoExcerptWhenTheBodyIsOneLine()
{
    QCOMPARE(noteOf(u"alone"_s).excerpt(), QString());
    QCOMPARE(noteOf(u"alone\n"_s).excerpt(), QString());
}

void NoteTest::saysWhetherThereIsAnExcerptWithoutMakingIt()
{
    QVERIFY(!noteOf(u""_s).hasExcerpt());
    QVERIFY(!noteOf(u"\r\nalone\r\n\u2029"_s).hasExcerpt());
    QVERIFY(noteOf(u"first\r\n\n "_s).hasExcerpt());
    QVERIFY(noteOf(u"first\nsecond"_s).hasExcerpt());
}

void NoteTest::endsALineAtEachKindOfLineBreak_data()
{
    QTest::addColumn<QString>("lineBreak");

    QTest::newRow("LF") << u"\n"_s;
    QTest::newRow("VT") << u"\v"_s;
    QTest::newRow("FF") << u"\f"_s;
    QTest::newRow("CR") << u"\r"_s;
    QTest::newRow("CR LF") << u"\r\n"_s;
    QTest::newRow("NEL") << u"\u0085"_s;
    QTest::newRow("line separator") << u"\u2028"_s;
    QTest::newRow("paragraph separator") << u"\u2029"_s;
}

void NoteTest::endsALineAtEachKindOfLineBreak()
{
    QFETCH(const QString, lineBreak);
    const Note note = noteOf(u"one"_s + lineBreak + u"two"_s + lineBreak + u"three"_s);

    QCOMPARE(note.title(), u"one"_s);
    QCOMPARE(note.excerpt(), u"two three"_s);
}

void NoteTest::endsALineNowhereElse()
{
    const QString lineBreaks = u"\n\v\f\r\u0085\u2028\u2029"_s;
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const QString body = u"one"_s + QChar(unit) + u"two"_s;
        QCOMPARE(noteOf(body).title(), lineBreaks.contains(QChar(unit)) ? u"one"_s : body);
    }
}

void NoteTest::differsWhenAnyFieldDiffers()
{
    const Note note{QUuid::createUuid(), u"body"_s, {1.0}, {2.0}};
    Note other = note;
    QCOMPARE(other, note);

    other.id = QUuid::createUuid();
    QVERIFY(!(other == note));
    other = note;
    other.body += u' ';
    QVERIFY(!(other == note));
    other = note;
    other.createdAt = {3.0};
    QVERIFY(!(other == note));
    other = note;
    other.updatedAt = {3.0};
    QVERIFY(!(other == note));
}

void NoteTest::startsAsAnEmptySnapshotOfTheCurrentVersion()
{
    const NoteSnapshot snapshot;

    QCOMPARE(snapshot.version, qint64(1));
    QVERIFY(snapshot.notes.isEmpty());
    QVERIFY(snapshot.captureDraft.isEmpty());
    QVERIFY(snapshot.editingDrafts.isEmpty());
}

void NoteTest::isAnotherSnapshotWhenAnyFieldDiffers()
{
    const NoteSnapshot snapshot{1, {noteOf(u"milk"_s)}, u"draft"_s, {{u"A"_s, u"edit"_s}}};
    NoteSnapshot other = snapshot;
    QCOMPARE(other, snapshot);

    other.version = 2;
    QVERIFY(!(other == snapshot));
    other = snapshot;
    other.notes.first().body += u' ';
    QVERIFY(!(other == snapshot));
    other = snapshot;
    other.captureDraft += u' ';
    QVERIFY(!(other == snapshot));
    other = snapshot;
    other.editingDrafts[u"A"_s] += u' ';
    QVERIFY(!(other == snapshot));
}

QTEST_GUILESS_MAIN(NoteTest)
#include "NoteTest.moc"
