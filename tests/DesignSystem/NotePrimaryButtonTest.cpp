// SPDX-License-Identifier: MIT
#include "NotePrimaryButton.h"
#include "NoteTheme.h"
#include "Pixels.h"
#include "Symbol.h"
#include "TextLine.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class NotePrimaryButtonTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isPaddedSeventeenByEleven();
    void setsItsTextInThirteenSemibold();
    void isACapsuleOfTheAccentColor();
    void isFainterOnlyWhilePressed();
    void isDimmedAsAWholeWhileDisabled();
    void isPressedByReturnAndSpaceUnlessDisabled();
};

namespace {

std::unique_ptr<NotePrimaryButton> makeButton(const QString &symbol = {})
{
    auto button = std::make_unique<NotePrimaryButton>(symbol);
    button->setPalette(NoteTheme::palette(ColorScheme::light));
    button->setText(u"Save changes"_s);
    button->resize(button->sizeHint());
    return button;
}

/// On the capsule, left of the text.
QColor capsuleColor(NotePrimaryButton &button)
{
    return Pixels::draw(button).pixelColor(8, button.height() / 2);
}

} // namespace

void NotePrimaryButtonTest::isPaddedSeventeenByEleven()
{
    const auto button = makeButton();
    const QFontMetrics metrics(button->font());

    QCOMPARE(button->sizeHint(),
             TextLine::size(metrics, u"Save changes"_s).grownBy({17, 11, 17, 11}));
    QVERIFY(makeButton(u"arrow.up.right"_s)->sizeHint().width() >
            button->sizeHint().width() + Symbol::size(13).width());
}

void NotePrimaryButtonTest::setsItsTextInThirteenSemibold()
{
    const auto button = makeButton();

    QCOMPARE(button->font().pixelSize(), 13);
    QCOMPARE(button->font().weight(), QFont::DemiBold);
    const QImage image = Pixels::draw(*button);
    bool hasWhite = false;
    for (int y = 11; y < image.height() - 11; ++y) {
        for (int x = 17; x < image.width() - 17; ++x)
            hasWhite |= Pixels::isAlike(image.pixelColor(x, y), Qt::white, 12);
    }
    QVERIFY(hasWhite);
}

void NotePrimaryButtonTest::isACapsuleOfTheAccentColor()
{
    const auto button = makeButton();
    const QImage image = Pixels::draw(*button);

    QVERIFY(Pixels::isAlike(capsuleColor(*button), NoteTheme::accent()));
    const int last = image.width() - 1;
    for (const QPoint corner : {QPoint(0, 0), QPoint(last, 0), QPoint(2, 2), QPoint(last - 2, 2)})
        QCOMPARE(image.pixelColor(corner).alpha(), 0);
    QVERIFY(image.pixelColor(0, image.height() / 2).alpha() > 200);
}

void NotePrimaryButtonTest::isFainterOnlyWhilePressed()
{
    const auto button = makeButton();
    button->show();

    QTest::mousePress(button.get(), Qt::LeftButton);
    const QColor pressed = capsuleColor(*button);
    QTest::mouseRelease(button.get(), Qt::LeftButton);

    QVERIFY(std::abs(pressed.alphaF() - 0.72F) < 0.01F);
    QCOMPARE(capsuleColor(*button).alpha(), 255);
}

void NotePrimaryButtonTest::isDimmedAsAWholeWhileDisabled()
{
    const auto button = makeButton(u"arrow.up.right"_s);
    const QImage enabled = Pixels::draw(*button, 2);

    button->setEnabled(false);

    const QImage disabled = Pixels::draw(*button, 2);
    // Text, symbol and capsule; only the rims of the capsule may be rounded otherwise.
    constexpr int rim = 4;
    for (int y = rim; y < enabled.height() - rim; ++y) {
        for (int x = enabled.height() / 2; x < enabled.width() - enabled.height() / 2; ++x) {
            const double expected = enabled.pixelColor(x, y).alpha() * 0.45;
            QVERIFY(std::abs(disabled.pixelColor(x, y).alpha() - expected) <= 2);
        }
    }
}

void NotePrimaryButtonTest::isPressedByReturnAndSpaceUnlessDisabled()
{
    const auto button = makeButton();
    QSignalSpy clicked(button.get(), &QAbstractButton::clicked);

    QTest::keyClick(button.get(), Qt::Key_Return);
    QTest::keyClick(button.get(), Qt::Key_Space);
    QCOMPARE(clicked.size(), 2);

    button->setEnabled(false);
    QTest::keyClick(button.get(), Qt::Key_Return);
    QTest::keyClick(button.get(), Qt::Key_Space);
    QCOMPARE(clicked.size(), 2);
}

QTEST_MAIN(NotePrimaryButtonTest)
#include "NotePrimaryButtonTest.moc"
