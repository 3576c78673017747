// SPDX-License-Identifier: MIT
#include "ThemedMenu.h"
#include "FixedEnvironment.h"

#include <QApplication>
#include <QScreen>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class ThemedMenuTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesOverColorsAndLocaleEachTimeItOpens();
    void hasItsFontBeforeItIsPlaced();
    void followsItsOwnerWhileItIsOpen();
    void isRound();
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

QTEST_MAIN(ThemedMenuTest)
#include "ThemedMenuTest.moc"
