// SPDX-License-Identifier: MIT
#include "ThemedMenu.h"
#include "FixedEnvironment.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

class ThemedMenuTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesOverColorsAndLocaleEachTimeItOpens();
    void hasItsFontBeforeItIsPlaced();
    void followsItsOwnerWhileItIsOpen();
    void isRound();
    void dividesItsItemsInBothSchemes_data();
    void dividesItsItemsInBothSchemes();
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

void ThemedMenuTest::hasItsFontBeforeItIsPlaced()
{
    FixedEnvironment environment(ColorScheme::light);
    QFont huge = QApplication::font();
    huge.setPixelSize(60);
    QApplication::setFont(huge, "QMenu");
    ThemedMenu menu(&environment);
    menu.addAction(u"Quit Quillmark"_s);
    const QRect screen = menu.screen()->geometry();
    const QSize size = menu.sizeHint();

    menu.popup(screen.bottomRight());

    QVERIFY(screen.contains(menu.geometry()));
    QCOMPARE(menu.size(), size);
    QApplication::setFont({}, "QMenu");
}

void ThemedMenuTest::followsItsOwnerWhileItIsOpen()
{
    FixedEnvironment environment(ColorScheme::light);
    ThemedMenu menu(&environment);
    menu.addAction(u"Copy"_s);
    menu.popup({});

    environment.setPalette(NoteTheme::palette(ColorScheme::dark));

    QCOMPARE(NoteTheme::colorScheme(menu.palette()), ColorScheme::dark);
}

void ThemedMenuTest::isRound()
{
    FixedEnvironment environment(ColorScheme::dark);
    ThemedMenu menu(&environment);
    QAction *const item = menu.addAction(u"Copy"_s);
    menu.popup({});
    menu.setActiveAction(item);

    const QImage picture = menu.grab().toImage();

    QVERIFY(qAlpha(picture.pixel(0, 0)) < 40);
    const QPoint besideTheText(picture.width() / 2, menu.actionGeometry(item).top() + 2);
    QCOMPARE(picture.pixelColor(besideTheText).rgb(), NoteTheme::accent().rgb());
}

void ThemedMenuTest::dividesItsItemsInBothSchemes_data()
{
    QTest::addColumn<ColorScheme>("scheme");

    QTest::newRow("light") << ColorScheme::light;
    QTest::newRow("dark") << ColorScheme::dark;
}

void ThemedMenuTest::dividesItsItemsInBothSchemes()
{
    QFETCH(const ColorScheme, scheme);
    FixedEnvironment environment(scheme);
    ThemedMenu menu(&environment);
    menu.addAction(u"New note"_s);
    const QRect line = [&menu, separator = menu.addSeparator()] {
        menu.addAction(u"Quit"_s);
        menu.popup({});
        return menu.actionGeometry(separator);
    }();

    const QImage picture = menu.grab().toImage();

    const int ground = picture.pixelColor(line.center().x(), line.top() - 3).lightness();
    int most = 0;
    for (int y = line.top(); y <= line.bottom(); ++y) {
        const int difference = picture.pixelColor(line.center().x(), y).lightness() - ground;
        most = std::max(most, scheme == ColorScheme::dark ? difference : -difference);
    }
    QVERIFY2(most >= 15, qPrintable(QString::number(most)));
}

QTEST_MAIN(ThemedMenuTest)
#include "ThemedMenuTest.moc"
