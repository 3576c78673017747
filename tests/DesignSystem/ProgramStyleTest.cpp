// SPDX-License-Identifier: MIT
#include "ProgramStyle.h"
#include "FixedEnvironment.h"
#include "TextStyle.h"

#include <QApplication>
#include <QTest>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The window of the tooltip that is shown.
QWidget *tip()
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->inherits("QTipLabel") && window->isVisible())
            return window;
    }
    return nullptr;
}

} // namespace

class ProgramStyleTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void roundsTooltipsInTheColoursOfTheProgram();
    void cutsTooltipsOutWhereNothingIsComposited();
    void setsTooltipsInTheTypeOfTheirLanguage();

private:
    static QWidget *show(QWidget &owner);
};

void ProgramStyleTest::initTestCase()
{
    QApplication::setStyle(new ProgramStyle);
    QApplication::setPalette(NoteTheme::palette(ColorScheme::dark));
}

void ProgramStyleTest::cleanup()
{
    QToolTip::hideText();
    QTRY_VERIFY(!tip());
}

QWidget *ProgramStyleTest::show(QWidget &owner)
{
    QToolTip::showText({40, 40}, u"Preferences"_s, &owner);
    return tip();
}

void ProgramStyleTest::roundsTooltipsInTheColoursOfTheProgram()
{
    FixedEnvironment environment(ColorScheme::dark);
    QWidget *const shown = show(environment);
    QVERIFY(shown);

    const QImage picture = shown->grab().toImage();

    QVERIFY(qAlpha(picture.pixel(0, 0)) < 40);
    QCOMPARE(picture.pixelColor(picture.width() / 2, 3).rgb(),
             QApplication::palette().color(QPalette::ToolTipBase).rgb());
    QVERIFY(shown->mask().isEmpty());
}

void ProgramStyleTest::cutsTooltipsOutWhereNothingIsComposited()
{
    FixedEnvironment environment(ColorScheme::dark, true);
    QWidget *const shown = show(environment);
    QVERIFY(shown);

    QVERIFY(!shown->mask().isEmpty());
    QVERIFY(!shown->mask().contains(QPoint(0, 0)));
    QVERIFY(shown->mask().contains(shown->rect().center()));
}

void ProgramStyleTest::setsTooltipsInTheTypeOfTheirLanguage()
{
    FixedEnvironment environment(ColorScheme::dark);
    environment.setLocale(QLocale(QLocale::Chinese, QLocale::China));
    QWidget *const shown = show(environment);
    QVERIFY(shown);

    QCOMPARE(shown->font(), TextStyles::tooltip.font(environment.locale()));
}

QTEST_MAIN(ProgramStyleTest)
#include "ProgramStyleTest.moc"
