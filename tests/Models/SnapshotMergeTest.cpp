// SPDX-License-Identifier: MIT
#include "SnapshotMerge.h"

#include "NoteId.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

const Note note{QUuid::createUuid(), u"body"_s, {1}, {2}};
const QString key = canonicalText(note.id);

/// With the note, and an edit of it unless that is null.
NoteSnapshot notes(const QString &capture, const QString &edit = {})
{
    NoteSnapshot snapshot{1, {note}, capture, {}};
    if (!edit.isNull())
        snapshot.editingDrafts[key] = edit;
    return snapshot;
}

} // namespace

/// Nothing that was typed here or stored by another program is missing afterwards.
class SnapshotMergeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void joinsTexts_data();
    void joinsTexts();
    void mergesTheCaptureDraft_data();
    void mergesTheCaptureDraft();
    void mergesAnEdit_data();
    void mergesAnEdit();
    void takesTheirNotes();
    void putsTheEditOfARemovedNoteBelowTheCapture();
    void forgetsWhatWasStoredWithARemovedNote();
};

void SnapshotMergeTest::joinsTexts_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("both");

    QTest::newRow("an empty line between") << u"a"_s << u"b"_s << u"a\n\nb"_s;
    QTest::newRow("one line end") << u"a\n"_s << u"b"_s << u"a\n\nb"_s;
    QTest::newRow("an empty line already") << u"a\n\n"_s << u"b"_s << u"a\n\nb"_s;
    QTest::newRow("blank first") << u" \n"_s << u"b"_s << u"b"_s;
    QTest::newRow("blank second") << u"a"_s << u" "_s << u"a"_s;
}

void SnapshotMergeTest::joinsTexts()
{
    QFETCH(const QString, first);
    QFETCH(const QString, second);

    QTEST(joined(first, second), "both");
}

void SnapshotMergeTest::mergesTheCaptureDraft_data()
{
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("ours");
    QTest::addColumn<QString>("theirs");
    QTest::addColumn<QString>("result");

    QTest::newRow("nobody typed") << u"a"_s << u"a"_s << u"a"_s << u"a"_s;
    QTest::newRow("they typed") << u"a"_s << u"a"_s << u"b"_s << u"b"_s;
    QTest::newRow("we typed") << u"a"_s << u"b"_s << u"a"_s << u"b"_s;
    QTest::newRow("both typed") << u"a"_s << u"b"_s << u"c"_s << u"b\n\nc"_s;
    QTest::newRow("both typed the same") << u"a"_s << u"b"_s << u"b"_s << u"b"_s;
    QTest::newRow("they emptied it") << u"a"_s << u"b"_s << u""_s << u"b"_s;
    QTest::newRow("we emptied it") << u"a"_s << u""_s << u"c"_s << u"c"_s;
}

void SnapshotMergeTest::mergesTheCaptureDraft()
{
    QFETCH(const QString, last);
    QFETCH(const QString, ours);
    QFETCH(const QString, theirs);
    QFETCH(const QString, result);

    QCOMPARE(merged(notes(last), notes(ours), notes(theirs)), notes(result));
}

void SnapshotMergeTest::mergesAnEdit_data()
{
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("ours");
    QTest::addColumn<QString>("theirs");
    QTest::addColumn<QString>("result");

    const QString none;
    QTest::newRow("nobody edited") << u"a"_s << u"a"_s << u"a"_s << u"a"_s;
    QTest::newRow("we began to") << none << u"b"_s << none << u"b"_s;
    QTest::newRow("they began to") << none << none << u"c"_s << u"c"_s;
    QTest::newRow("both began to") << none << u"b"_s << u"c"_s << u"b\n\nc"_s;
    QTest::newRow("we went on") << u"a"_s << u"b"_s << u"a"_s << u"b"_s;
    QTest::newRow("they went on") << u"a"_s << u"a"_s << u"c"_s << u"c"_s;
    QTest::newRow("both went on") << u"a"_s << u"b"_s << u"c"_s << u"b\n\nc"_s;
    QTest::newRow("they gave it up") << u"a"_s << u"a"_s << none << none;
    QTest::newRow("they gave it up, we went on") << u"a"_s << u"b"_s << none << u"b"_s;
}

void SnapshotMergeTest::mergesAnEdit()
{
    QFETCH(const QString, last);
    QFETCH(const QString, ours);
    QFETCH(const QString, theirs);
    QFETCH(const QString, result);

    QCOMPARE(merged(notes({}, last), notes({}, ours), notes({}, theirs)), notes({}, result));
}

void SnapshotMergeTest::takesTheirNotes()
{
    NoteSnapshot theirs = notes(u"a"_s);
    theirs.notes[0].body = u"another body"_s;
    theirs.notes.append({QUuid::createUuid(), u"new"_s, {3}, {3}});

    NoteSnapshot expected = theirs;
    expected.editingDrafts[key] = u"our edit"_s;
    QCOMPARE(merged(notes(u"a"_s), notes(u"a"_s, u"our edit"_s), theirs), expected);
}

void SnapshotMergeTest::putsTheEditOfARemovedNoteBelowTheCapture()
{
    const NoteSnapshot theirs{1, {}, u"theirs"_s, {}};

    const NoteSnapshot result = merged(notes({}), notes(u"ours"_s, u"our edit"_s), theirs);

    QCOMPARE(result, (NoteSnapshot{1, {}, u"ours\n\ntheirs\n\nour edit"_s, {}}));
}

void SnapshotMergeTest::forgetsWhatWasStoredWithARemovedNote()
{
    // They saw that edit when they removed it with its note.
    const NoteSnapshot stored = notes({}, u"stored edit"_s);

    QCOMPARE(merged(stored, stored, NoteSnapshot()), NoteSnapshot());
}

QTEST_APPLESS_MAIN(SnapshotMergeTest)
#include "SnapshotMergeTest.moc"
