// SPDX-License-Identifier: MIT
#include "AppLanguage.h"

#include <QTest>

class AppLanguageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isReadFromItsOwnRawValueAlone();
};

void AppLanguageTest::isReadFromItsOwnRawValueAlone()
{
    QCOMPARE(appLanguage(u"system"), AppLanguage::system);
    QCOMPARE(appLanguage(u"en"), AppLanguage::english);
    QCOMPARE(appLanguage(u"zh-Hans"), AppLanguage::chinese);
    for (const char16_t *text : {u"", u"fr", u"EN", u"zh", u"zh-hans", u"System"})
        QVERIFY(!appLanguage(text));
}

QTEST_GUILESS_MAIN(AppLanguageTest)
#include "AppLanguageTest.moc"
