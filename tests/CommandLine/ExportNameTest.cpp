// SPDX-License-Identifier: MIT
#include "ExportName.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// What a readable copy is called.
class ExportNameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void makesANameOfATitle_data();
    void makesANameOfATitle();
    void cutsAtTheEndOfACharacter();
    void tellsEqualTitlesApart();
};

void ExportNameTest::makesANameOfATitle_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("name");

    QTest::newRow("plain") << u"Buy milk."_s << u"Buy milk..md"_s;
    QTest::newRow("slashes") << u"a/b\\c"_s << u"a-b-c.md"_s;
    QTest::newRow("control characters") << u"a\tb\x07"_s << u"a-b-.md"_s;
    QTest::newRow("spaces") << u"  a  "_s << u"a.md"_s;
    QTest::newRow("none") << QString() << u"Untitled.md"_s;
    QTest::newRow("hidden") << u".profile"_s << u"_.profile.md"_s;
    QTest::newRow("the folder above") << u".."_s << u"_...md"_s;
    QTest::newRow("Chinese") << u"买牛奶"_s << u"买牛奶.md"_s;
}

void ExportNameTest::makesANameOfATitle()
{
    QFETCH(QString, title);
    QFETCH(QString, name);

    QCOMPARE(QString::fromStdString(ExportNames().next(title)), name);
}

void ExportNameTest::cutsAtTheEndOfACharacter()
{
    // A letter and its accent are one character, and so is a family.
    const QString accented = QString(179, u'a') + u"e\u0301"_s + QString(50, u'b');
    const QString family = u"👨‍👩‍👧"_s.repeated(30);

    QCOMPARE(QString::fromStdString(ExportNames().next(accented)), QString(179, u'a') + u"….md"_s);
    QCOMPARE(QString::fromStdString(ExportNames().next(family)),
             u"👨‍👩‍👧"_s.repeated(10) + u"….md"_s);
}

void ExportNameTest::tellsEqualTitlesApart()
{
    ExportNames names;

    QCOMPARE(names.next(u"Same"_s), "Same.md");
    QCOMPARE(names.next(u"same"_s), "same (2).md");
    QCOMPARE(names.next(u"Other"_s), "Other.md");
    QCOMPARE(names.next(u"SAME"_s), "SAME (3).md");
}

QTEST_GUILESS_MAIN(ExportNameTest)
#include "ExportNameTest.moc"
