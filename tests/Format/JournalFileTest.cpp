// SPDX-License-Identifier: MIT
#include "JournalFile.h"

#include "Notes.h"

#include <QCryptographicHash>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

JournalFile journal()
{
    JournalFile file;
    file.number = 12;
    file.captureId = numberedId(9);
    file.drafts = {
        {u"capture"_s, u"a thought\nof two lines\n"_s, TextMark(u""_s), {}},
        {canonicalText(numberedId(1)), u"\U0001FAB6"_s, TextMark(u"body"_s), TextMark(u"next"_s)},
        {canonicalText(numberedId(2)), u""_s, TextMark(), TextMark()}};
    return file;
}

} // namespace

class JournalFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void givesBackWhatItTakes();
    void hasAKnownForm();
    void tellsTextsApart();
    void readsAMarkInItsOwnFormOnly_data();
    void readsAMarkInItsOwnFormOnly();
    void givesOnlyDraftsThatAreWhole();
    void refusesWhatIsNoJournal_data();
    void refusesWhatIsNoJournal();
    void refusesWhatIsNoNumber_data();
    void refusesWhatIsNoNumber();
    void readsTheOlderForm();
    void refusesTheOlderFormWhenItIsTorn();
};

void JournalFileTest::givesBackWhatItTakes()
{
    const std::optional<JournalFile> read = JournalFile::decoded(journal().encoded());

    QVERIFY(read);
    QCOMPARE(read->number, journal().number);
    QCOMPARE(read->captureId, journal().captureId);
    QVERIFY(read->drafts == journal().drafts);
}

void JournalFileTest::hasAKnownForm()
{
    JournalFile file;
    file.number = 3;
    file.captureId = QUuid(u"{8c5b6f0e-3c1d-4e0a-9c55-0a1b2c3d4e5f}"_s);
    file.drafts = {{u"capture"_s, u"milk"_s, TextMark(u""_s), {}}};

    QCOMPARE(file.encoded(),
             "Quillmark journal 1\n"
             "3 8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F capture "
             "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855 - 4 "
             "c1e6b24b615a2adf0ab681a7519dc139411fa2ebdb8c3b51654e07ca23a3d8b2\nmilk\n");
}

void JournalFileTest::tellsTextsApart()
{
    QVERIFY(TextMark(u"a"_s) == TextMark(u"a"_s));
    QVERIFY(TextMark(u"a"_s) != TextMark(u"b"_s));
    QVERIFY(TextMark(u""_s) != TextMark());
    QVERIFY(TextMark(std::optional<QString>()) == TextMark());
    QVERIFY(TextMark(std::optional(u"a"_s)) == TextMark(u"a"_s));
    QCOMPARE(TextMark().toText(), "none");
}

void JournalFileTest::readsAMarkInItsOwnFormOnly_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray digest = QByteArray::fromStdString(TextMark(u"a"_s).toText());

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("too short") << digest.chopped(2);
    QTest::newRow("too long") << digest + "00";
    QTest::newRow("upper case") << digest.toUpper();
    QTest::newRow("a sign that is no digit") << digest.chopped(1) + "g";
    QTest::newRow("more than a digest in all") << digest + "g";
    QTest::newRow("another word") << QByteArray("None");
}

void JournalFileTest::readsAMarkInItsOwnFormOnly()
{
    QFETCH(const QByteArray, text);

    QVERIFY(!TextMark::fromText(text.toStdString()));
    QVERIFY(TextMark::fromText("none") == TextMark());
    QVERIFY(TextMark::fromText(TextMark(u"a"_s).toText()) == TextMark(u"a"_s));
}

void JournalFileTest::givesOnlyDraftsThatAreWhole()
{
    const std::string whole = journal().encoded();
    const std::vector<TypedDraft> drafts = journal().drafts;
    const auto isBeginning = [&](const std::optional<JournalFile> &file) {
        return !file || (file->drafts.size() < drafts.size() &&
                         std::equal(file->drafts.begin(), file->drafts.end(), drafts.begin()));
    };
    for (std::size_t place = 0; place < whole.size(); ++place) {
        QVERIFY(isBeginning(JournalFile::decoded(whole.substr(0, place))));
        std::string zeros = whole;
        std::ranges::fill(zeros.begin() + static_cast<std::ptrdiff_t>(place), zeros.end(), '\0');
        QVERIFY(isBeginning(JournalFile::decoded(zeros)));
        for (int bit = 0; bit < 8; ++bit) {
            std::string changed = whole;
            changed[place] = static_cast<char>(changed[place] ^ (1 << bit));
            QVERIFY(isBeginning(JournalFile::decoded(changed)));
        }
    }
}

void JournalFileTest::refusesWhatIsNoJournal_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("another program's") << QByteArray("a text");
    QTest::newRow("the older form") << QByteArray("Quillmark typed 1\n");
    QTest::newRow("a later form") << QByteArray("Quillmark journal 2\n");
}

void JournalFileTest::refusesWhatIsNoJournal()
{
    QFETCH(const QByteArray, bytes);

    QVERIFY(!JournalFile::decoded(bytes.toStdString()));
}

void JournalFileTest::refusesWhatIsNoNumber_data()
{
    QTest::addColumn<QByteArray>("number");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("more behind it") << QByteArray("3x");
    QTest::newRow("a sign before it") << QByteArray("+3");
    QTest::newRow("too large") << QByteArray("18446744073709551616");
}

void JournalFileTest::refusesWhatIsNoNumber()
{
    QFETCH(const QByteArray, number);
    const auto withNumber = [](const QByteArray &wanted) {
        const QByteArray head = wanted + " 8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F capture none - 4 ";
        const auto digest = QCryptographicHash::hash(head + "milk", QCryptographicHash::Sha256);
        return ("Quillmark journal 1\n" + head + digest.toHex() + "\nmilk\n").toStdString();
    };
    const auto isRead = [](const std::optional<JournalFile> &file) {
        return file && file->drafts.size() == 1;
    };
    QVERIFY(isRead(JournalFile::decoded(withNumber("3"))));
    QVERIFY(!isRead(JournalFile::decoded(withNumber(number))));
}

namespace {

std::string older(const QString &base, const QString &text)
{
    return "Quillmark typed 1\n" + TextMark(base).toText() + '\n' + TextMark(text).toText() + '\n' +
           text.toStdString();
}

} // namespace

void JournalFileTest::readsTheOlderForm()
{
    const auto draft = JournalFile::decodedOlder(u"capture"_s, older(u"mi"_s, u"milk\n"_s));

    QVERIFY(draft);
    QVERIFY((*draft == TypedDraft{u"capture"_s, u"milk\n"_s, TextMark(u"mi"_s), {}}));
}

void JournalFileTest::refusesTheOlderFormWhenItIsTorn()
{
    const std::string whole = older(u"mi"_s, u"milk"_s);
    for (std::size_t size = 0; size < whole.size(); ++size)
        QVERIFY(!JournalFile::decodedOlder(u"capture"_s, whole.substr(0, size)));
    QVERIFY(!JournalFile::decodedOlder(u"capture"_s, whole + "x"));
    QVERIFY(!JournalFile::decodedOlder(u"capture"_s, journal().encoded()));
}

QTEST_GUILESS_MAIN(JournalFileTest)
#include "JournalFileTest.moc"
