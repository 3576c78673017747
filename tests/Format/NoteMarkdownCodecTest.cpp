// SPDX-License-Identifier: MIT
#include "NoteMarkdownCodec.h"

#include "NoteId.h"
#include "Thrown.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString idText = u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"_s;

Note noteWith(const QString &body)
{
    return {.id = QUuid(idText),
            .body = body,
            .createdAt = *Timestamp::fromIso8601(u"2025-03-01T08:15:30.250Z"),
            .updatedAt = *Timestamp::fromIso8601(u"2025-03-02T09:00:00.000Z")};
}

QString file(const QString &header, const QString &body = u"text"_s)
{
    return u"---\n"_s + header + u"\n---\n"_s + body;
}

QString header()
{
    return u"quillmark: 1\nid: "_s + idText +
           u"\ncreated: 2025-03-01T08:15:30.250Z\nupdated: 2025-03-02T09:00:00.000Z"_s;
}

QString headerWith(const QString &before, const QString &after)
{
    return header().replace(before, after);
}

} // namespace

class NoteMarkdownCodecTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTheHeaderAndThenTheBodyVerbatim();
    void endsWithTheClosingFenceWhenTheBodyIsEmpty();
    void givesBackEveryBody_data();
    void givesBackEveryBody();
    void readsAsExactOnlyWhatItWouldWrite_data();
    void readsAsExactOnlyWhatItWouldWrite();
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
    void readsAHugeHeaderInNoMoreThanItsLength();
};

void NoteMarkdownCodecTest::writesTheHeaderAndThenTheBodyVerbatim()
{
    QCOMPARE(NoteMarkdownCodec::encode(noteWith(u" two\r\nlines \n"_s)),
             u"---\nquillmark: 1\nid: 8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F\n"
             "created: 2025-03-01T08:15:30.250Z\nupdated: 2025-03-02T09:00:00.000Z\n---\n"
             " two\r\nlines \n"_s);
}

void NoteMarkdownCodecTest::endsWithTheClosingFenceWhenTheBodyIsEmpty()
{
    QVERIFY(NoteMarkdownCodec::encode(noteWith({})).endsWith(u"\n---\n"_s));
}

void NoteMarkdownCodecTest::givesBackEveryBody_data()
{
    QTest::addColumn<QString>("body");

    QTest::newRow("empty") << u""_s;
    QTest::newRow("begins with a fence") << u"---\nafter"_s;
    QTest::newRow("holds a fence") << u"before\n---\nafter"_s;
    QTest::newRow("is nothing but a fence") << u"\n---\n"_s;
    QTest::newRow("begins with a combining mark") << u"\u0301accent"_s;
    QTest::newRow("CR LF") << u"\r\none\r\ntwo\r\n"_s;
    QTest::newRow("only a CR") << u"\r"_s;
    QTest::newRow("byte order mark") << u"\uFEFFtext"_s;
    QTest::newRow("NUL") << QString(u"a\0b"_s);
    QTest::newRow("beyond the basic plane") << u"🪶 羽毛"_s;
}

void NoteMarkdownCodecTest::givesBackEveryBody()
{
    QFETCH(QString, body);
    const Note note = noteWith(body);

    QCOMPARE(NoteMarkdownCodec::decode(NoteMarkdownCodec::encode(note)), note);
    QCOMPARE(NoteMarkdownCodec::decodeExact(NoteMarkdownCodec::encode(note)), note);
}

void NoteMarkdownCodecTest::readsAsExactOnlyWhatItWouldWrite_data()
{
    reads_data();
    QTest::newRow("an identifier in part of lower case") << headerWith(u"8C5B"_s, u"8c5B"_s);
    QTest::newRow("an identifier in braces") << headerWith(u"8C5B6F0E"_s, u"{C5B6F0E"_s);
    QTest::newRow("a shorter fraction and a zone") << headerWith(u"30.250Z"_s, u"30.2+01:00"_s);
    QTest::newRow("no fraction and a zone") << headerWith(u"30.250Z"_s, u"3+00:00"_s);
    QTest::newRow("a time that is none") << headerWith(u"08:15"_s, u"28:15"_s);
    QTest::newRow("cut off") << header().chopped(9);
}

void NoteMarkdownCodecTest::readsAsExactOnlyWhatItWouldWrite()
{
    QFETCH(QString, header);
    const QString text = file(header);

    const std::optional<Note> exact = NoteMarkdownCodec::decodeExact(text);

    QCOMPARE(exact.has_value(), header == ::header());
    QVERIFY(!exact || NoteMarkdownCodec::encode(*exact) == text);
}

void NoteMarkdownCodecTest::reads_data()
{
    QTest::addColumn<QString>("header");

    QTest::newRow("the written form") << header();
    QTest::newRow("keys in another order")
        << u"updated: 2025-03-02T09:00:00.000Z\ncreated: 2025-03-01T08:15:30.250Z\nid: "_s +
               idText + u"\nquillmark: 1"_s;
    QTest::newRow("blank lines") << u"\n\n"_s + headerWith(u"\nid"_s, u"\n\n\nid"_s) + u"\n"_s;
    QTest::newRow("an unknown key") << header() + u"\ntitle: a: b"_s;
    QTest::newRow("an empty key") << header() + u"\n: nothing"_s;
    QTest::newRow("an unknown key of another case") << header() + u"\nID: other"_s;
    QTest::newRow("spaces and tabs around a value")
        << headerWith(u"created: "_s, u"created:  \t\u3000 "_s)
               .replace(u"Z\nupdated"_s, u"Z \t\u00A0\nupdated"_s);
    QTest::newRow("no space after the colon") << headerWith(u": 1"_s, u":1"_s);
    QTest::newRow("lower-case identifier") << headerWith(idText, idText.toLower());
    QTest::newRow("CR LF within the value of an unknown key") << header() + u"\ntitle: a\r\nb"_s;
    QTest::newRow("CR LF before the end of a line") << u"title: a\r\n\n"_s + header();
    QTest::newRow("unknown keys of letters with accents") << header() + u"\nclé: é\né: è"_s;
    QTest::newRow("unknown keys without values") << header() + u"\ntitle:\nclé:"_s;
    QTest::newRow("a second colon behind one that a number sign takes along")
        << header() + u"\n\u0600:: b"_s;
    QTest::newRow("a fence after CR LF belongs to the header")
        << header() + u"\ntitle: a\r\n---\nother: b"_s;
    QTest::newRow("a marked colon belongs to an unknown key") << header() + u"\na:\u0301b: c"_s;
}

void NoteMarkdownCodecTest::reads()
{
    QFETCH(QString, header);

    QCOMPARE(NoteMarkdownCodec::decode(file(header)), noteWith(u"text"_s));
}

void NoteMarkdownCodecTest::refuses_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("an empty file") << u""_s;
    QTest::newRow("no header") << u"text"_s;
    QTest::newRow("a byte order mark before the fence") << u"\uFEFF"_s + file(header());
    QTest::newRow("line ends of CR LF") << file(header()).replace(u'\n', u"\r\n"_s);
    QTest::newRow("an opening fence with CR LF") << file(header()).replace(0, 4, u"---\r\n"_s);
    QTest::newRow("no closing fence") << u"---\n"_s + header() + u"\n"_s;
    QTest::newRow("a closing fence without its line end") << u"---\n"_s + header() + u"\n---"_s;
    QTest::newRow("a closing fence after CR LF only") << u"---\n"_s + header() + u"\r\n---\ntext"_s;
    QTest::newRow("a closing fence that shares its line end with the opening one")
        << u"---\n---\n"_s;
    QTest::newRow("a longer closing fence") << u"---\n"_s + header() + u"\n----\ntext"_s;
    QTest::newRow("a line without a colon") << file(header() + u"\nremark"_s);
    QTest::newRow("a line whose only colon bears a mark") << file(header() + u"\na:\u0301b"_s);
    QTest::newRow("a mark behind a colon at the front") << file(header() + u"\n:\u0301b"_s);
    QTest::newRow("a mark behind a colon between accents") << file(header() + u"\né:\u0301é"_s);
    QTest::newRow("a number sign that takes the first colon along")
        << file(header() + u"\n\u0600: 1"_s);
    QTest::newRow("a number sign that takes a later colon along")
        << file(header() + u"\na\u0600: 1"_s);
    QTest::newRow("two identifiers") << file(header() + u"\nid: "_s + idText);
    QTest::newRow("an unknown key twice") << file(header() + u"\na: 1\na: 2"_s);
    QTest::newRow("a space before the colon") << file(headerWith(u"id:"_s, u"id :"_s));
    QTest::newRow("a space before the key") << file(headerWith(u"id:"_s, u" id:"_s));
    QTest::newRow("format 2") << file(headerWith(u"quillmark: 1"_s, u"quillmark: 2"_s));
    QTest::newRow("format 01") << file(headerWith(u"quillmark: 1"_s, u"quillmark: 01"_s));
    QTest::newRow("no format") << file(headerWith(u"quillmark: 1\n"_s, u""_s));
    QTest::newRow("CR at the end of the format") << file(headerWith(u": 1\n"_s, u": 1\r\n"_s));
    QTest::newRow("no identifier") << file(headerWith(u"id: "_s, u"ident: "_s));
    QTest::newRow("identifier in braces") << file(headerWith(idText, u"{"_s + idText + u"}"_s));
    QTest::newRow("identifier without hyphens")
        << file(headerWith(idText, QString(idText).remove(u'-')));
    QTest::newRow("no time of creation") << file(headerWith(u"created"_s, u"made"_s));
    QTest::newRow("no time of change") << file(headerWith(u"updated"_s, u"changed"_s));
    QTest::newRow("a time without a fraction") << file(headerWith(u".250Z"_s, u"Z"_s));
    QTest::newRow("a date that does not exist") << file(headerWith(u"03-01"_s, u"02-30"_s));
}

void NoteMarkdownCodecTest::refuses()
{
    QFETCH(QString, text);

    const auto error = refusal([&] { static_cast<void>(NoteMarkdownCodec::decode(text)); });

    QVERIFY(error.has_value());
    QCOMPARE(*error, RepositoryError::invalidMarkdown());
}

void NoteMarkdownCodecTest::readsAHugeHeaderInNoMoreThanItsLength()
{
    // With work that grows by the square of the length this would run for hours.
    QString lines;
    for (int i = 0; i < 200'000; ++i)
        lines += u"\nkey%1: value"_s.arg(i);
    const QString marks = u":\u0301"_s.repeated(500'000);

    QCOMPARE(NoteMarkdownCodec::decode(file(header() + lines)), noteWith(u"text"_s));
    QCOMPARE(NoteMarkdownCodec::decode(file(header() + u"\nx"_s + marks + u"y: z"_s)),
             noteWith(u"text"_s));
}

QTEST_GUILESS_MAIN(NoteMarkdownCodecTest)
#include "NoteMarkdownCodecTest.moc"
