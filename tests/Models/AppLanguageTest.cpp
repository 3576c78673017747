// SPDX-License-Identifier: MIT
#include "AppLanguage.h"

#include <QTest>
#include <map>

using namespace Qt::Literals::StringLiterals;

class AppLanguageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isListedInTheOrderOfTheMenu();
    void isReadFromItsOwnRawValueAlone();
    void hasNoSystemLanguageInTheLocaleC_data();
    void hasNoSystemLanguageInTheLocaleC();
    void followsTheFirstLanguageOfTheSystem();
};

void AppLanguageTest::isListedInTheOrderOfTheMenu()
{
    QStringList rawValues;
    QStringList labels;
    for (const AppLanguage language : allAppLanguages) {
        rawValues << rawValue(language);
        labels << label(language);
    }
    QCOMPARE(rawValues, (QStringList{u"system"_s, u"en"_s, u"zh-Hans"_s}));
    QCOMPARE(labels, (QStringList{u"Follow system"_s, u"English"_s, u"简体中文"_s}));
}

void AppLanguageTest::isReadFromItsOwnRawValueAlone()
{
    for (const AppLanguage language : allAppLanguages)
        QCOMPARE(appLanguage(rawValue(language)), language);
    for (const char16_t *text : {u"", u"fr", u"EN", u"zh", u"zh-hans", u"System"})
        QVERIFY(!appLanguage(text));
}

void AppLanguageTest::hasNoSystemLanguageInTheLocaleC_data()
{
    QTest::addColumn<QByteArray>("all");
    QTest::addColumn<QByteArray>("messages");
    QTest::addColumn<QByteArray>("lang");
    QTest::addColumn<bool>("hasLanguage");
    QTest::newRow("C") << QByteArray() << QByteArray() << QByteArray("C") << false;
    QTest::newRow("POSIX") << QByteArray() << QByteArray() << QByteArray("POSIX") << false;
    QTest::newRow("nothing set") << QByteArray() << QByteArray() << QByteArray() << false;
    QTest::newRow("English") << QByteArray() << QByteArray() << QByteArray("en_US.UTF-8") << true;
    QTest::newRow("messages in C")
        << QByteArray() << QByteArray("C") << QByteArray("zh_CN.UTF-8") << false;
    QTest::newRow("all in C") << QByteArray("C") << QByteArray("zh_CN.UTF-8")
                              << QByteArray("zh_CN.UTF-8") << false;
}

void AppLanguageTest::hasNoSystemLanguageInTheLocaleC()
{
    QFETCH(QByteArray, all);
    QFETCH(QByteArray, messages);
    QFETCH(QByteArray, lang);
    QFETCH(bool, hasLanguage);
    std::map<const char *, QByteArray> before;
    for (const auto &[name, value] : std::map<const char *, QByteArray>{
             {"LC_ALL", all}, {"LC_MESSAGES", messages}, {"LANG", lang}, {"LANGUAGE", "zh_CN"}}) {
        before[name] = qgetenv(name);
        qputenv(name, value);
    }

    const QStringList languages = systemLanguages();

    for (const auto &[name, value] : before) {
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    QCOMPARE(!languages.isEmpty(), hasLanguage);
}

void AppLanguageTest::followsTheFirstLanguageOfTheSystem()
{
    const auto ofSystem = [](const QStringList &languages) {
        return resolvedLanguage(AppLanguage::system, languages);
    };
    QCOMPARE(ofSystem({}), u"en"_s);
    QCOMPARE(ofSystem({u"zh-TW"_s, u"en"_s}), u"zh-Hans"_s);
    QCOMPARE(ofSystem({u"de"_s, u"zh"_s}), u"en"_s);
    QCOMPARE(resolvedLanguage(AppLanguage::english, {u"zh"_s}), u"en"_s);
    QCOMPARE(resolvedLanguage(AppLanguage::chinese, {u"en"_s}), u"zh-Hans"_s);
}

QTEST_GUILESS_MAIN(AppLanguageTest)
#include "AppLanguageTest.moc"
