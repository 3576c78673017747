// SPDX-License-Identifier: MIT
#include "AppPreferences.h"

#include <QDir>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace Qt::Literals::StringLiterals;

class AppPreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void listsTheChoicesInTheOrderOfTheMenu();
    void makesAChoiceOnlyFromItsOwnRawValue();
    void namesEachChoice();
    void mapsTheAppearanceToAColorScheme();

    void followsTheSystemWithoutStoredValues();
    void readsTheStoredValues();
    void takesAnUnknownStoredValueForTheSystem();
    void followsTheSystemsLanguagesWhenTheyChange();
    void translatesPhrasesAndWritesNumbersOfTheLocale();
    void prefersGivenValuesAndStoresNothing();
    void writesBothKeysAtEveryChange();
    void rewritesAndPostsButNotifiesNobodyWhenTheValueIsTheSame();
    void postsAfterTheChangeIsStored();
    void postsWithoutDefaultsToo();

    void resolvesTheSystemLanguage_data();
    void resolvesTheSystemLanguage();
    void resolvesAChosenLanguageWhateverTheSystemSays();
    void hasTheLocaleOfItsLanguage();

    void translatesInTheChosenLanguageAtOnce();
    void showsATextWithoutATranslationAsWritten();
    void showsAnEmptyTextAsEmpty();
    void fillsInATranslatedFormat();
    void translatesAMessage();
    void fallsBackToTheSystemLanguageWithoutItsTable();
    void fallsBackToTheKeyWithoutAnyTable();
    void readsATableOnlyWhenATextIsAskedFor();

private:
    [[nodiscard]] QSettings &defaults() { return *m_defaults; }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<QSettings> m_defaults;
};

void AppPreferencesTest::init()
{
    m_defaults.reset();
    m_dir = std::make_unique<QTemporaryDir>();
    m_defaults =
        std::make_unique<QSettings>(m_dir->filePath(u"Penwick.conf"_s), QSettings::IniFormat);
}

void AppPreferencesTest::listsTheChoicesInTheOrderOfTheMenu()
{
    QStringList appearances;
    for (const AppAppearance appearance : allAppAppearances)
        appearances << rawValue(appearance);

    QCOMPARE(appearances, (QStringList{u"system"_s, u"light"_s, u"dark"_s}));
}

void AppPreferencesTest::makesAChoiceOnlyFromItsOwnRawValue()
{
    for (const AppAppearance appearance : allAppAppearances)
        QCOMPARE(appAppearance(rawValue(appearance)), appearance);

    for (const char16_t *text : {u"", u"Light", u"System", u" dark"})
        QVERIFY(!appAppearance(text));
}

void AppPreferencesTest::namesEachChoice()
{
    QCOMPARE(label(AppAppearance::system), u"Follow system"_s);
    QCOMPARE(label(AppAppearance::light), u"Light"_s);
    QCOMPARE(label(AppAppearance::dark), u"Dark"_s);
}

void AppPreferencesTest::mapsTheAppearanceToAColorScheme()
{
    for (const ColorScheme ofSystem : {ColorScheme::light, ColorScheme::dark}) {
        QCOMPARE(colorScheme(AppAppearance::system, ofSystem), ofSystem);
        QCOMPARE(colorScheme(AppAppearance::light, ofSystem), ColorScheme::light);
        QCOMPARE(colorScheme(AppAppearance::dark, ofSystem), ColorScheme::dark);
    }
}

void AppPreferencesTest::followsTheSystemWithoutStoredValues()
{
    const AppPreferences preferences(&defaults());

    QCOMPARE(preferences.language(), AppLanguage::system);
    QCOMPARE(preferences.appearance(), AppAppearance::system);
    QVERIFY(defaults().allKeys().isEmpty());
}

void AppPreferencesTest::readsTheStoredValues()
{
    defaults().setValue(u"ui.language"_s, u"zh-Hans"_s);
    defaults().setValue(u"ui.appearance"_s, u"dark"_s);

    const AppPreferences preferences(&defaults());

    QCOMPARE(preferences.language(), AppLanguage::chinese);
    QCOMPARE(preferences.appearance(), AppAppearance::dark);
}

void AppPreferencesTest::followsTheSystemsLanguagesWhenTheyChange()
{
    AppPreferences preferences(nullptr, AppLanguage::system);
    const QSignalSpy changed(&preferences, &AppPreferences::languageChanged);
    QCOMPARE(preferences.text(u"Notes"_s), u"Notes"_s);

    preferences.setSystemLanguages({u"zh-CN"_s, u"en"_s});
    QCOMPARE(preferences.resolvedLanguage(), u"zh-Hans"_s);
    QCOMPARE(changed.count(), 1);
    QVERIFY(preferences.text(u"Notes"_s) != u"Notes"_s);

    preferences.setSystemLanguages({u"zh-TW"_s});
    QCOMPARE(changed.count(), 1);

    preferences.setLanguage(AppLanguage::english);
    QCOMPARE(preferences.text(u"Notes"_s), u"Notes"_s);
    preferences.setSystemLanguages({});
    QCOMPARE(changed.count(), 2);
}

void AppPreferencesTest::translatesPhrasesAndWritesNumbersOfTheLocale()
{
    const AppPreferences preferences(nullptr, AppLanguage::chinese);

    QCOMPARE(preferences.text({u"“%@” could not be used: %@. Mend that, then try again."_s,
                               {u"a.md"_s, Phrase{u"Connection timed out"_s}}}),
             u"“a.md”无法使用：连接超时。请排除此问题，然后重试。"_s);
    QCOMPARE(preferences.format(u"%d characters"_s, {12345}), u"12,345 个字符"_s);
}

void AppPreferencesTest::takesAnUnknownStoredValueForTheSystem()
{
    defaults().setValue(u"ui.language"_s, u"fr"_s);
    AppPreferences preferences(&defaults());
    QCOMPARE(preferences.language(), AppLanguage::system);
    QCOMPARE(defaults().value(u"ui.language"_s), u"fr"_s);

    preferences.setAppearance(AppAppearance::light);

    QCOMPARE(defaults().value(u"ui.language"_s), u"system"_s);
    QCOMPARE(defaults().value(u"ui.appearance"_s), u"light"_s);
}

void AppPreferencesTest::prefersGivenValuesAndStoresNothing()
{
    defaults().setValue(u"ui.language"_s, u"zh-Hans"_s);

    const AppPreferences preferences(&defaults(), AppLanguage::english, AppAppearance::dark);

    QCOMPARE(preferences.language(), AppLanguage::english);
    QCOMPARE(preferences.appearance(), AppAppearance::dark);
    QCOMPARE(defaults().value(u"ui.language"_s), u"zh-Hans"_s);
    QVERIFY(!defaults().contains(u"ui.appearance"_s));
}

void AppPreferencesTest::writesBothKeysAtEveryChange()
{
    AppPreferences preferences(&defaults());

    preferences.setLanguage(AppLanguage::chinese);

    defaults().sync();
    const QSettings file(defaults().fileName(), QSettings::IniFormat);
    QCOMPARE(file.value(QLatin1StringView(AppPreferences::languageKey)), u"zh-Hans"_s);
    QCOMPARE(file.value(QLatin1StringView(AppPreferences::appearanceKey)), u"system"_s);
}

void AppPreferencesTest::rewritesAndPostsButNotifiesNobodyWhenTheValueIsTheSame()
{
    AppPreferences preferences(&defaults(), AppLanguage::english, AppAppearance::light);
    const QSignalSpy language(&preferences, &AppPreferences::languageChanged);
    const QSignalSpy appearance(&preferences, &AppPreferences::appearanceChanged);
    const QSignalSpy posted(&preferences, &AppPreferences::didChange);

    preferences.setLanguage(AppLanguage::english);
    preferences.setAppearance(AppAppearance::light);

    QCOMPARE(language.count(), 0);
    QCOMPARE(appearance.count(), 0);
    QCOMPARE(posted.count(), 2);
    QCOMPARE(defaults().value(u"ui.language"_s), u"en"_s);
    QCOMPARE(defaults().value(u"ui.appearance"_s), u"light"_s);

    preferences.setAppearance(AppAppearance::dark);
    QCOMPARE(language.count(), 0);
    QCOMPARE(appearance.count(), 1);
    QCOMPARE(posted.count(), 3);
}

void AppPreferencesTest::postsAfterTheChangeIsStored()
{
    AppPreferences preferences(&defaults());
    QString storedWhenPosted;
    connect(&preferences, &AppPreferences::didChange, this,
            [&] { storedWhenPosted = defaults().value(u"ui.appearance"_s).toString(); });

    preferences.setAppearance(AppAppearance::dark);

    QCOMPARE(storedWhenPosted, u"dark"_s);
}

void AppPreferencesTest::postsWithoutDefaultsToo()
{
    AppPreferences preferences(nullptr);
    const QSignalSpy posted(&preferences, &AppPreferences::didChange);

    preferences.setLanguage(AppLanguage::chinese);
    preferences.setAppearance(AppAppearance::dark);

    QCOMPARE(posted.count(), 2);
    QCOMPARE(preferences.language(), AppLanguage::chinese);
    QCOMPARE(preferences.appearance(), AppAppearance::dark);
}

void AppPreferencesTest::resolvesTheSystemLanguage_data()
{
    QTest::addColumn<QStringList>("systemLanguages");
    QTest::addColumn<QString>("resolved");

    QTest::newRow("Taiwan") << QStringList{u"zh-Hant-TW"_s, u"en-US"_s} << u"zh-Hans"_s;
    QTest::newRow("China") << QStringList{u"zh-Hans-CN"_s} << u"zh-Hans"_s;
    QTest::newRow("plain Chinese") << QStringList{u"zh"_s} << u"zh-Hans"_s;
    QTest::newRow("French first") << QStringList{u"fr-FR"_s, u"zh-Hans-CN"_s} << u"en"_s;
    QTest::newRow("English") << QStringList{u"en-GB"_s} << u"en"_s;
    QTest::newRow("none") << QStringList{} << u"en"_s;
}

void AppPreferencesTest::resolvesTheSystemLanguage()
{
    QFETCH(const QStringList, systemLanguages);
    QFETCH(const QString, resolved);

    QCOMPARE(resolvedLanguage(AppLanguage::system, systemLanguages), resolved);
}

void AppPreferencesTest::resolvesAChosenLanguageWhateverTheSystemSays()
{
    QCOMPARE(resolvedLanguage(AppLanguage::english, {u"zh-Hans-CN"_s}), u"en"_s);
    QCOMPARE(resolvedLanguage(AppLanguage::chinese, {u"en-US"_s}), u"zh-Hans"_s);
    QCOMPARE(AppPreferences(nullptr, AppLanguage::chinese).resolvedLanguage(), u"zh-Hans"_s);
}

void AppPreferencesTest::hasTheLocaleOfItsLanguage()
{
    const QLocale chinese = AppPreferences(nullptr, AppLanguage::chinese).locale();
    const QLocale english = AppPreferences(nullptr, AppLanguage::english).locale();

    QCOMPARE(chinese.language(), QLocale::Chinese);
    QCOMPARE(chinese.script(), QLocale::SimplifiedHanScript);
    QCOMPARE(english.language(), QLocale::English);
}

void AppPreferencesTest::translatesInTheChosenLanguageAtOnce()
{
    AppPreferences preferences(nullptr, AppLanguage::english);
    QCOMPARE(preferences.text(u"Quit anyway"_s), u"Quit anyway"_s);

    preferences.setLanguage(AppLanguage::chinese);
    QCOMPARE(preferences.text(u"Quit anyway"_s), u"仍要退出"_s);

    preferences.setLanguage(AppLanguage::english);
    QCOMPARE(preferences.text(u"Quit anyway"_s), u"Quit anyway"_s);
}

void AppPreferencesTest::showsATextWithoutATranslationAsWritten()
{
    const AppPreferences preferences(nullptr, AppLanguage::chinese);

    QCOMPARE(preferences.text(u"Nobody translated this · 50 %"_s),
             u"Nobody translated this · 50 %"_s);
}

void AppPreferencesTest::showsAnEmptyTextAsEmpty()
{
    QCOMPARE(AppPreferences(nullptr, AppLanguage::chinese).text(QString()), QString());
}

void AppPreferencesTest::fillsInATranslatedFormat()
{
    AppPreferences preferences(nullptr, AppLanguage::chinese);

    QCOMPARE(preferences.format(u"%d notes"_s, {1234}), u"1,234 条笔记"_s);
    QCOMPARE(preferences.format(u"Open note: %@"_s, {u"牛奶 %d"_s}), u"打开笔记：牛奶 %d"_s);
    QCOMPARE(preferences.format(u"%02d"_s, {7}), u"07"_s);
}

void AppPreferencesTest::translatesAMessage()
{
    const AppPreferences preferences(nullptr, AppLanguage::chinese);
    const Message message{u"Unsupported note version: %d. Original files were left untouched."_s,
                          {3}};

    QCOMPARE(preferences.text(message), u"不支持的笔记版本：3。原始文件未作改动。"_s);
}

void AppPreferencesTest::fallsBackToTheSystemLanguageWithoutItsTable()
{
    const QString english = m_dir->filePath(u"en.lproj"_s);
    QVERIFY(QDir().mkpath(english));
    QVERIFY(
        QFile::copy(AppPreferences::defaultResourcesFolder() + u"/zh-Hans.lproj/Localizable.qm"_s,
                    english + u"/Localizable.qm"_s));
    QCOMPARE(resolvedLanguage(AppLanguage::system, QLocale::system().uiLanguages()), u"en"_s);

    const AppPreferences preferences(nullptr, AppLanguage::chinese, std::nullopt, nullptr,
                                     m_dir->path());

    // The system's own table, which holds other texts here so that it can be told apart.
    QCOMPARE(preferences.text(u"Preferences"_s), u"偏好设置"_s);
}

void AppPreferencesTest::fallsBackToTheKeyWithoutAnyTable()
{
    const AppPreferences preferences(nullptr, AppLanguage::chinese, std::nullopt, nullptr,
                                     m_dir->filePath(u"nowhere"_s));

    QCOMPARE(preferences.text(u"Preferences"_s), u"Preferences"_s);
}

void AppPreferencesTest::readsATableOnlyWhenATextIsAskedFor()
{
    const QString folder = m_dir->filePath(u"later"_s);
    const AppPreferences preferences(nullptr, AppLanguage::chinese, std::nullopt, nullptr, folder);

    QVERIFY(QDir().mkpath(folder + u"/zh-Hans.lproj"_s));
    QVERIFY(
        QFile::copy(AppPreferences::defaultResourcesFolder() + u"/zh-Hans.lproj/Localizable.qm"_s,
                    folder + u"/zh-Hans.lproj/Localizable.qm"_s));

    QCOMPARE(preferences.text(u"Preferences"_s), u"偏好设置"_s);
}

QTEST_GUILESS_MAIN(AppPreferencesTest)
#include "AppPreferencesTest.moc"
