// SPDX-License-Identifier: MIT
#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "NoteTheme.h"
#include "SystemAppearance.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

class AppEnvironmentTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void handsDownTheOnePreferencesObject();
    void handsDownLocaleAndColors();
    void followsTheSystemWhileNoAppearanceIsChosen();
    void keepsTheChosenAppearanceWhenTheSystemChanges();
    void handsDownHighContrast();
    void changesLanguageAndLookWithoutRebuildingTheView();
    void followsTheLanguageOfTheSystem();
    void announcesWhatNoPaletteCarries();
    void isFoundFromEveryDescendantAlone();
    void fillsItselfWithItsContent();
    void colorsTooltipsAlike();
};

namespace {

ColorScheme schemeOf(const QWidget &view)
{
    return NoteTheme::colorScheme(view.palette());
}

void setSystemScheme(SystemAppearance &system, ColorScheme scheme)
{
    SystemAppearance::Values values = system.values();
    values.colorScheme = scheme;
    system.setValues(values);
}

} // namespace

void AppEnvironmentTest::handsDownTheOnePreferencesObject()
{
    AppPreferences preferences(nullptr);
    SystemAppearance system;
    AppEnvironment launcher(preferences, system);
    AppEnvironment editor(preferences, system);
    auto *view = new QWidget;
    editor.setContent(view);

    const auto *found = qobject_cast<AppEnvironment *>(ViewEnvironment::of(view));

    QCOMPARE(found, &editor);
    QCOMPARE(&found->preferences(), &preferences);
    QCOMPARE(&launcher.preferences(), &preferences);
}

void AppEnvironmentTest::handsDownLocaleAndColors()
{
    AppPreferences preferences(nullptr, AppLanguage::chinese, AppAppearance::dark);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *content = new QWidget;
    auto *deepInside = new QWidget(content);

    environment.setContent(content);

    QCOMPARE(deepInside->locale(), preferences.locale());
    QCOMPARE(deepInside->locale().script(), QLocale::SimplifiedHanScript);
    QCOMPARE(schemeOf(*deepInside), ColorScheme::dark);
    QCOMPARE(NoteTheme::color(deepInside->palette(), Tone::secondary),
             NoteTheme::color(NoteTheme::palette(ColorScheme::dark), Tone::secondary));
}

void AppEnvironmentTest::followsTheSystemWhileNoAppearanceIsChosen()
{
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::system);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *view = new QWidget;
    environment.setContent(view);
    QCOMPARE(schemeOf(*view), ColorScheme::light);

    setSystemScheme(system, ColorScheme::dark);
    QCOMPARE(schemeOf(*view), ColorScheme::dark);
    QCOMPARE(environment.colorScheme(), ColorScheme::dark);

    setSystemScheme(system, ColorScheme::light);
    QCOMPARE(schemeOf(*view), ColorScheme::light);
}

void AppEnvironmentTest::keepsTheChosenAppearanceWhenTheSystemChanges()
{
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::light);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *view = new QWidget;
    environment.setContent(view);

    setSystemScheme(system, ColorScheme::dark);
    QCOMPARE(schemeOf(*view), ColorScheme::light);

    preferences.setAppearance(AppAppearance::system);
    QCOMPARE(schemeOf(*view), ColorScheme::dark);
}

void AppEnvironmentTest::handsDownHighContrast()
{
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::dark);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *view = new QWidget;
    environment.setContent(view);

    system.setValues({.highContrast = true});

    QCOMPARE(
        NoteTheme::color(view->palette(), Tone::secondary),
        NoteTheme::color(NoteTheme::palette(ColorScheme::dark, Contrast::high), Tone::secondary));
    QCOMPARE(schemeOf(*view), ColorScheme::dark);
    system.setValues({});
    QVERIFY(NoteTheme::contrast(view->palette()) == Contrast::normal);
}

void AppEnvironmentTest::changesLanguageAndLookWithoutRebuildingTheView()
{
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::light);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *field = new QLineEdit(u"half a thought"_s);
    environment.setContent(field);
    environment.show();
    field->setCursorPosition(4);

    preferences.setLanguage(AppLanguage::chinese);
    preferences.setAppearance(AppAppearance::dark);

    QCOMPARE(field->locale().language(), QLocale::Chinese);
    QCOMPARE(schemeOf(*field), ColorScheme::dark);
    QCOMPARE(environment.findChild<QLineEdit *>(), field);
    QCOMPARE(field->text(), u"half a thought"_s);
    QCOMPARE(field->cursorPosition(), 4);
    QVERIFY(field->isVisible());
}

void AppEnvironmentTest::followsTheLanguageOfTheSystem()
{
    AppPreferences preferences(nullptr, AppLanguage::system, AppAppearance::light);
    preferences.setSystemLanguages({u"zh-CN"_s});
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    QCOMPARE(environment.locale().language(), QLocale::Chinese);

    // Tests run where nobody prefers Chinese.
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(&environment, &change);

    QCOMPARE(environment.locale().language(), QLocale::English);
}

void AppEnvironmentTest::announcesWhatNoPaletteCarries()
{
    AppPreferences preferences(nullptr);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    QSignalSpy changed(&environment, &ViewEnvironment::changed);
    SystemAppearance::Values values;

    values.reduceMotion = true;
    system.setValues(values);
    QCOMPARE(changed.size(), 1);
    QVERIFY(environment.reduceMotion());
    QVERIFY(!environment.reduceTransparency());

    values.highContrast = true;
    system.setValues(values);
    QCOMPARE(changed.size(), 2);
    QVERIFY(environment.reduceTransparency());

    preferences.setLanguage(AppLanguage::chinese);
    QCOMPARE(changed.size(), 3);
    preferences.setLanguage(AppLanguage::chinese);
    QCOMPARE(changed.size(), 3);
}

void AppEnvironmentTest::isFoundFromEveryDescendantAlone()
{
    AppPreferences preferences(nullptr);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *content = new QWidget;
    auto *child = new QWidget(content);
    auto *grandchild = new QLineEdit(child);
    environment.setContent(content);
    QWidget alone;
    const QWidget childOfAlone(&alone);

    for (const QWidget *view : std::initializer_list<const QWidget *>{content, child, grandchild})
        QCOMPARE(ViewEnvironment::of(view), &environment);
    for (const QWidget *view :
         std::initializer_list<const QWidget *>{&alone, &childOfAlone, nullptr})
        QCOMPARE(ViewEnvironment::of(view), nullptr);
}

void AppEnvironmentTest::fillsItselfWithItsContent()
{
    AppPreferences preferences(nullptr);
    SystemAppearance system;
    AppEnvironment environment(preferences, system);
    auto *content = new QWidget;
    environment.resize(300, 200);
    environment.show();

    environment.setContent(content);

    QTRY_COMPARE(content->geometry(), environment.rect());
}

void AppEnvironmentTest::colorsTooltipsAlike()
{
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::dark);
    SystemAppearance system;
    const AppEnvironment environment(preferences, system);

    QCOMPARE(NoteTheme::colorScheme(QToolTip::palette()), ColorScheme::dark);
}

QTEST_MAIN(AppEnvironmentTest)
#include "AppEnvironmentTest.moc"
