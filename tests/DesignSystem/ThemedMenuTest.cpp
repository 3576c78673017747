// SPDX-License-Identifier: MIT
#include "ThemedMenu.h"
#include "FixedEnvironment.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class ThemedMenuTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesOverColorsAndLocaleEachTimeItOpens();
};

void ThemedMenuTest::takesOverColorsAndLocaleEachTimeItOpens()
{
    FixedEnvironment environment(ColorScheme::light);
    auto *owner = new QWidget(&environment);
    ThemedMenu menu(owner);
    menu.addAction(u"Copy"_s);

    menu.popup({});
    QCOMPARE(NoteTheme::colorScheme(menu.palette()), ColorScheme::light);
    menu.close();
    environment.setPalette(NoteTheme::palette(ColorScheme::dark));
    environment.setLocale(QLocale(QLocale::Chinese));
    menu.popup({});

    QCOMPARE(NoteTheme::colorScheme(menu.palette()), ColorScheme::dark);
    QCOMPARE(menu.locale().language(), QLocale::Chinese);
}

QTEST_MAIN(ThemedMenuTest)
#include "ThemedMenuTest.moc"
