// SPDX-License-Identifier: MIT
#include "NoteSearch.h"
#include "Dice.h"

#include <QTest>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

Note noteOf(const QString &body, double updatedAt = 10)
{
    return {QUuid::createUuid(), body, {1}, {updatedAt}};
}

/// What is to be answered: made anew each time, and from nothing but the notes.
QList<Note> plainlyMatching(const QList<Note> &notes, const QString &query)
{
    const QString trimmed = query.trimmed();
    QList<Note> found;
    for (const Note &note : notes) {
        if (trimmed.isEmpty() || TextSearch(trimmed).isFoundIn(note.body))
            found.append(note);
    }
    std::ranges::stable_sort(found, std::greater(), &Note::updatedAt);
    return found;
}

/// What is pressed or pasted: letters, marks that make others of them, halves of pairs, spaces.
QString someKey(Dice &dice)
{
    static const QStringList keys = {u"a"_s,
                                     u"A"_s,
                                     u"e"_s,
                                     u"s"_s,
                                     u"ß"_s,
                                     u"и"_s,
                                     u"1"_s,
                                     u" "_s,
                                     u"想"_s,
                                     u"\u0301"_s,
                                     u"\u0306"_s,
                                     u"\u00AD"_s,
                                     u"가"_s,
                                     u"ᆨ"_s,
                                     u"เ"_s,
                                     u"ก"_s,
                                     u"ﬁ"_s,
                                     QString(QChar(0xD83D)),
                                     QString(QChar(0xDE00)),
                                     QString(QChar(0xDE01)),
                                     u"as"_s,
                                     u"sea"_s,
                                     u"é"_s};
    return keys[dice.below(size_t(keys.size()))];
}

QString someText(Dice &dice, std::uint32_t keys)
{
    QString text;
    for (std::uint32_t i = dice.below(keys + 1); i > 0; --i)
        text += someKey(dice);
    return text;
}

QList<Note> someNotes(Dice &dice, int count)
{
    QList<Note> notes;
    for (int i = 0; i < count; ++i)
        notes.append(noteOf(someText(dice, 12), dice.below(20)));
    return notes;
}

void pressOn(QString &field, Dice &dice)
{
    const qsizetype place = dice.below(size_t(field.size()) + 1);
    switch (dice.below(8)) {
    case 0:
    case 1:
        field.chop(1);
        break;
    case 2:
        field.insert(place, someKey(dice));
        break;
    case 3:
        field.remove(place, 1);
        break;
    case 4:
        field = dice.hasChance(50) ? QString() : someText(dice, 3);
        break;
    default:
        field += someKey(dice);
    }
}

} // namespace

class NoteSearchTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersWhateverIsTypedAsIfItRememberedNothing()
    {
        Dice dice(3);
        int found = 0;
        for (int life = 0; life < 40; ++life) {
            QList<Note> notes = someNotes(dice, 60);
            NoteSearch search;
            search.setNotes(notes);
            QString field;
            for (int key = 0; key < 100; ++key) {
                pressOn(field, dice);
                if (dice.hasChance(5)) {
                    notes[dice.below(60)] = noteOf(someText(dice, 12), dice.below(20));
                    search.setNotes(notes);
                }

                const QList<Note> answer = search.matching(field).toList();

                QVERIFY2(answer == plainlyMatching(notes, field), qPrintable(field));
                found += answer.isEmpty() || answer.size() == notes.size() ? 0 : 1;
            }
        }
        QVERIFY(found > 500);
    }

    void looksAgainAtTextsThatHadNoHalfOfAPair()
    {
        NoteSearch search;
        search.setNotes({noteOf(u"\U0001F600"_s), noteOf(u"tea"_s)});
        QVERIFY(search.matching(QString(QChar(0xD83D))).isEmpty());

        QCOMPARE(search.matching(u"\U0001F600"_s).size(), qsizetype(1));
    }

    void looksAgainAtTextsThatHadNoLetterWithoutItsMark()
    {
        NoteSearch search;
        search.setNotes({noteOf(u"мой"_s), noteOf(u"мои"_s)});
        QCOMPARE(search.matching(u"мои"_s).size(), qsizetype(1));

        QCOMPARE(search.matching(u"мои\u0306"_s).toList().first().body, u"мой"_s);
    }

    void forgetsWhatWasFoundAmongOtherNotes()
    {
        Note note = noteOf(u"milk"_s);
        NoteSearch search;
        search.setNotes({note, noteOf(u"bread"_s)});
        QCOMPARE(search.matching(u"milk"_s).size(), qsizetype(1));
        QCOMPARE(search.all().size(), qsizetype(2));

        note.body = u"oat drink"_s;
        search.setNotes({note});

        QVERIFY(search.matching(u"milk"_s).isEmpty());
        QCOMPARE(search.matching(u"oat"_s).size(), qsizetype(1));
        QCOMPARE(search.all().size(), qsizetype(1));
    }

    void keepsWhatWasFoundWhateverComesNext()
    {
        NoteSearch search;
        search.setNotes({noteOf(u"milk"_s), noteOf(u"bread"_s)});
        const FoundNotes milk = search.matching(u"milk"_s);

        search.setNotes({});

        QCOMPARE(milk.size(), qsizetype(1));
        QCOMPARE(milk[0].body, u"milk"_s);
        QVERIFY(search.matching(u"milk"_s).isEmpty());
    }
};

QTEST_APPLESS_MAIN(NoteSearchTest)

#include "NoteSearchTest.moc"
