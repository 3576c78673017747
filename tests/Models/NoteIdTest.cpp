// SPDX-License-Identifier: MIT
#include "NoteId.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::string_view_literals;

class NoteIdTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesUpperCaseWithoutBraces();
    void readsBothCases();
    void readsBackWhatItWrites();
    void tellsTheCanonicalSpelling();
    void readsTheIdentifierOfOnlyZeros();
    void refusesEveryOtherForm_data();
    void refusesEveryOtherForm();
};

void NoteIdTest::writesUpperCaseWithoutBraces()
{
    const QUuid id(u"{8c5b6f0e-3c1d-4e0a-9c55-0a1b2c3d4e5f}"_s);

    QCOMPARE(canonicalText(id), u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"_s);
}

void NoteIdTest::readsBothCases()
{
    const QUuid id(u"{8c5b6f0e-3c1d-4e0a-9c55-0a1b2c3d4e5f}"_s);

    QCOMPARE(parseId(u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"), id);
    QCOMPARE(parseId(u"8c5b6f0e-3c1d-4E0A-9c55-0a1b2c3d4e5f"), id);
    QCOMPARE(parseId("8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"sv), id);
    QCOMPARE(parseId("8c5b6f0e-3c1d-4E0A-9c55-0a1b2c3d4e5f"sv), id);
}

void NoteIdTest::readsBackWhatItWrites()
{
    for (int i = 0; i < 100; ++i) {
        const QUuid id = QUuid::createUuid();
        QCOMPARE(parseId(canonicalText(id)), id);
        QCOMPARE(parseId(canonicalText(id).toStdString()), id);
    }
}

void NoteIdTest::tellsTheCanonicalSpelling()
{
    QVERIFY(isCanonicalId(u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"));
    QVERIFY(!isCanonicalId(u"8C5B6F0E-3C1D-4E0A-9C55-0a1B2C3D4E5F"));
    QVERIFY(!isCanonicalId(u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5f"));
}

void NoteIdTest::readsTheIdentifierOfOnlyZeros()
{
    QCOMPARE(parseId(u"00000000-0000-0000-0000-000000000000"), QUuid());
    QCOMPARE(parseId("00000000-0000-0000-0000-000000000000"sv), QUuid());
}

void NoteIdTest::refusesEveryOtherForm_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << u""_s;
    QTest::newRow("braces") << u"{8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F}"_s;
    QTest::newRow("no hyphens") << u"8C5B6F0E3C1D4E0A9C550A1B2C3D4E5F"_s;
    QTest::newRow("hyphen misplaced") << u"8C5B6F0E3-C1D-4E0A-9C55-0A1B2C3D4E5F"_s;
    QTest::newRow("one digit short") << u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5"_s;
    QTest::newRow("one digit more") << u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F0"_s;
    QTest::newRow("not hexadecimal") << u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5G"_s;
    QTest::newRow("not hexadecimal at the front") << u"GC5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"_s;
    QTest::newRow("wide digits") << u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5\uFF11"_s;
    QTest::newRow("a character whose low byte is a digit")
        << u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5\u0131"_s;
    QTest::newRow("a letter of Latin-1") << u"8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5\u00C1"_s;
    QTest::newRow("space before") << u" 8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5"_s;
    QTest::newRow("URN") << u"urn:uuid:8C5B6F0E-3C1D-4E0A-9C55-0A1B2C"_s;
}

void NoteIdTest::refusesEveryOtherForm()
{
    QFETCH(const QString, text);

    QVERIFY(!parseId(text));
    QVERIFY(!parseId(text.toStdString()));
}

QTEST_GUILESS_MAIN(NoteIdTest)
#include "NoteIdTest.moc"
