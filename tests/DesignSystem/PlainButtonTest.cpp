// SPDX-License-Identifier: MIT
#include "PlainButton.h"
#include "Metrics.h"
#include "Pixels.h"
#include "TextLine.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class PlainButtonTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void drawsTheChosenTabOnACapsule();
    void choosesOneTabOfARow();
    void isAsBigAsItsTextWithoutPadding();
    void putsTheSymbolBeforeTheText();
};

void PlainButtonTest::drawsTheChosenTabOnACapsule()
{
    const std::unique_ptr<PlainButton> tab(PlainButton::makeTab());
    tab->setPalette(NoteTheme::palette(ColorScheme::light));
    tab->setText(u"Notes"_s);
    tab->resize(tab->sizeHint());
    const QPoint besideTheText(5, tab->height() / 2);

    QCOMPARE(Pixels::draw(*tab).pixelColor(besideTheText).alpha(), 0);
    tab->setChecked(true);

    const QColor capsule = Pixels::draw(*tab).pixelColor(besideTheText);
    QVERIFY(std::abs(capsule.alphaF() - 0.07F) < 0.01F);
    QCOMPARE(Pixels::draw(*tab).pixelColor(0, 0).alpha(), 0);
}

void PlainButtonTest::choosesOneTabOfARow()
{
    QWidget row;
    PlainButton *const first = PlainButton::makeTab(&row);
    PlainButton *const second = PlainButton::makeTab(&row);
    first->setChecked(true);

    second->click();

    QVERIFY(!first->isChecked());
    QVERIFY(second->isChecked());
}

void PlainButtonTest::isAsBigAsItsTextWithoutPadding()
{
    PlainButton button(TextStyles::bannerAction);
    button.setText(u"Retry"_s);
    const QFontMetrics metrics(button.font());

    QCOMPARE(button.sizeHint(), TextLine::size(metrics, u"Retry"_s));
}

void PlainButtonTest::putsTheSymbolBeforeTheText()
{
    PlainButton button(TextStyles::backButton, u"chevron.left"_s);
    button.setPalette(NoteTheme::palette(ColorScheme::light));
    button.setText(u"W"_s);
    button.resize(button.sizeHint());
    const int symbolEnd = button.width() - button.fontMetrics().horizontalAdvance(u'W');

    const QImage image = Pixels::draw(button);

    QVERIFY(!Pixels::inkBounds(image.copy(0, 0, symbolEnd, image.height())).isEmpty());
    button.setLayoutDirection(Qt::RightToLeft);
    const QRect ink = Pixels::inkBounds(
        Pixels::draw(button).copy(button.width() - symbolEnd, 0, symbolEnd, image.height()));
    QVERIFY(!ink.isEmpty());
}

QTEST_MAIN(PlainButtonTest)
#include "PlainButtonTest.moc"
