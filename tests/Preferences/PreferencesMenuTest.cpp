// SPDX-License-Identifier: MIT
#include "PreferencesMenu.h"
#include "AppPreferences.h"
#include "NoteTheme.h"
#include "Pixels.h"
#include "Symbol.h"
#include "SystemAppearance.h"

#include <QAccessible>
#include <QMenu>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

class PreferencesMenuTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsLanguagesAndAppearancesInTheirOrder();
    void marksWhatIsChosen();
    void hasNoFolderItemBeforeThereIsAFolder();
    void asksToShowTheFolder();
    void choosesALanguageAndSpeaksIt();
    void choosesAnAppearance();
    void setsAlsoTheValueThatIsAlreadyChosen();
    void looksAndReadsAsDescribed();
    void opensByMouseAndKeyboard_data();
    void opensByMouseAndKeyboard();
};

namespace {

const QUrl folder = QUrl::fromLocalFile(u"/home/someone/notes"_s);

struct Fixture {
    explicit Fixture(QSettings *defaults = nullptr)
        : preferences(defaults, AppLanguage::english, AppAppearance::light)
    {
    }

    AppPreferences preferences;
    std::optional<QUrl> notesFolder;
    PreferencesMenu button{preferences, [this] { return notesFolder; }};

    /// The texts of a menu as it opens; a divider is a dash.
    static QStringList open(QMenu *menu)
    {
        menu->popup({});
        QStringList texts;
        for (const QAction *action : menu->actions()) {
            if (action->isVisible())
                texts.append(action->isSeparator() ? u"-"_s : action->text());
        }
        menu->close();
        return texts;
    }

    QStringList open() const { return open(button.menu()); }
    QMenu *subMenu(int index) const { return button.menu()->actions().at(index)->menu(); }
    QStringList openSubMenu(int index) const { return open(subMenu(index)); }

    QString checked(int index) const
    {
        QStringList texts;
        for (const QAction *action : subMenu(index)->actions()) {
            if (action->isChecked())
                texts.append(action->text());
        }
        return texts.join(u", "_s);
    }

    void choose(int index, int choice) const
    {
        button.menu()->popup({});
        subMenu(index)->actions().at(choice)->trigger();
        button.menu()->close();
    }
};

constexpr int languages = 0;
constexpr int appearances = 1;

} // namespace

void PreferencesMenuTest::listsLanguagesAndAppearancesInTheirOrder()
{
    const Fixture fixture;

    QCOMPARE(fixture.open(), QStringList({u"Language"_s, u"Appearance"_s}));
    QCOMPARE(fixture.openSubMenu(languages),
             QStringList({u"Follow system"_s, u"English"_s, u"简体中文"_s}));
    QCOMPARE(fixture.openSubMenu(appearances),
             QStringList({u"Follow system"_s, u"Light"_s, u"Dark"_s}));
}

void PreferencesMenuTest::marksWhatIsChosen()
{
    Fixture fixture;
    QCOMPARE(fixture.checked(languages), u"English"_s);
    QCOMPARE(fixture.checked(appearances), u"Light"_s);

    fixture.preferences.setAppearance(AppAppearance::system);

    QCOMPARE(fixture.checked(appearances), u"Follow system"_s);
}

void PreferencesMenuTest::hasNoFolderItemBeforeThereIsAFolder()
{
    Fixture fixture;
    QCOMPARE(fixture.open(), QStringList({u"Language"_s, u"Appearance"_s}));

    fixture.notesFolder = folder;
    QCOMPARE(fixture.open(),
             QStringList({u"Language"_s, u"Appearance"_s, u"-"_s, u"Show Markdown files"_s}));

    fixture.notesFolder.reset();
    QCOMPARE(fixture.open(), QStringList({u"Language"_s, u"Appearance"_s}));
}

void PreferencesMenuTest::asksToShowTheFolder()
{
    Fixture fixture;
    fixture.notesFolder = folder;
    QSignalSpy requested(&fixture.button, &PreferencesMenu::showFolderRequested);
    fixture.open();

    fixture.button.menu()->actions().last()->trigger();

    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested.first().first().toUrl(), folder);
}

void PreferencesMenuTest::choosesALanguageAndSpeaksIt()
{
    Fixture fixture;
    fixture.notesFolder = folder;

    fixture.choose(languages, 2);

    QCOMPARE(fixture.preferences.language(), AppLanguage::chinese);
    const QStringList texts =
        fixture.open() + fixture.openSubMenu(languages) +
        QStringList{fixture.button.toolTip(), fixture.button.accessibleName()};
    for (const QString &key : {u"Language"_s, u"Appearance"_s, u"Show Markdown files"_s,
                               u"Follow system"_s, u"Preferences"_s}) {
        QVERIFY2(fixture.preferences.text(key) != key, qPrintable(key));
        QVERIFY2(texts.contains(fixture.preferences.text(key)), qPrintable(key));
    }
    QCOMPARE(fixture.checked(languages), u"简体中文"_s);
}

void PreferencesMenuTest::choosesAnAppearance()
{
    Fixture fixture;

    fixture.choose(appearances, 2);

    QCOMPARE(fixture.preferences.appearance(), AppAppearance::dark);
    QCOMPARE(fixture.checked(appearances), u"Dark"_s);
}

void PreferencesMenuTest::setsAlsoTheValueThatIsAlreadyChosen()
{
    const QTemporaryDir dir;
    QSettings defaults(dir.filePath(u"Penwick.conf"_s), QSettings::IniFormat);
    const Fixture fixture(&defaults);
    QSignalSpy didChange(&fixture.preferences, &AppPreferences::didChange);
    QSignalSpy languageChanged(&fixture.preferences, &AppPreferences::languageChanged);
    QSignalSpy appearanceChanged(&fixture.preferences, &AppPreferences::appearanceChanged);
    QCOMPARE(defaults.allKeys(), QStringList());

    for (const int index : {languages, appearances}) {
        defaults.clear();
        didChange.clear();
        fixture.choose(index, 1);

        QCOMPARE(didChange.size(), 1);
        QCOMPARE(defaults.value(u"ui.language"_s), u"en"_s);
        QCOMPARE(defaults.value(u"ui.appearance"_s), u"light"_s);
    }

    QCOMPARE(languageChanged.size(), 0);
    QCOMPARE(appearanceChanged.size(), 0);
    QCOMPARE(fixture.checked(languages), u"English"_s);
    QCOMPARE(fixture.checked(appearances), u"Light"_s);
}

void PreferencesMenuTest::looksAndReadsAsDescribed()
{
    Fixture fixture;
    PreferencesMenu &button = fixture.button;
    button.setPalette(NoteTheme::palette(ColorScheme::light));
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&button);

    QCOMPARE(button.objectName(), u"preferencesMenu"_s);
    QCOMPARE(button.size(), QSize(25, 28));
    QCOMPARE(button.toolTip(), u"Preferences"_s);
    QCOMPARE(accessible->text(QAccessible::Name), u"Preferences"_s);
    QCOMPARE(accessible->role(), QAccessible::ButtonMenu);

    QImage expected(25, 28, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    Symbol::paint(painter, QRectF(0, 0, 25, 28), u"slider.horizontal.3"_s, 13,
                  NoteTheme::color(button.palette(), Tone::secondary));
    painter.end();
    QCOMPARE(Pixels::draw(button), expected);
}

void PreferencesMenuTest::opensByMouseAndKeyboard_data()
{
    QTest::addColumn<int>("key");

    QTest::newRow("mouse") << 0;
    QTest::newRow("Space") << int(Qt::Key_Space);
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Down") << int(Qt::Key_Down);
}

void PreferencesMenuTest::opensByMouseAndKeyboard()
{
    QFETCH(int, key);
    Fixture fixture;
    fixture.button.show();
    bool wasOpen = false;
    // In Qt 6.4 the menu runs an event loop of its own until it is closed, in 6.8 it does not.
    connect(fixture.button.menu(), &QMenu::aboutToShow, this, [&] {
        QTimer::singleShot(0, fixture.button.menu(), [&] {
            wasOpen = fixture.button.menu()->isVisible();
            fixture.button.menu()->close();
        });
    });

    if (key == 0)
        QTest::mouseClick(&fixture.button, Qt::LeftButton);
    else
        QTest::keyClick(&fixture.button, static_cast<Qt::Key>(key));

    QTRY_VERIFY(wasOpen);
}

QTEST_MAIN(PreferencesMenuTest)
#include "PreferencesMenuTest.moc"
