// SPDX-License-Identifier: MIT
#include "QuietIconButton.h"
#include "FixedEnvironment.h"
#include "Pixels.h"
#include "Symbol.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

class QuietIconButtonTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void measuresThirtyByThirty();
    void drawsItsSymbolInThirteenPointsInTheMiddle();
    void takesClicksInItsWholeSquare();
    void isPressedByReturnAndSpace();
    void leavesShortcutsToItsScreen();
    void saysWhatItDoes();
    void leavesTheKeyboardWhereItIsWhenClicked();
    void showsAKeyboardFocusAlone();
    void drawsNothingOfItsOwnWhilePressed();
    void isDimmedWhileDisabled();
};

namespace {

std::unique_ptr<QuietIconButton> makeButton()
{
    auto button = std::make_unique<QuietIconButton>(u"minus"_s);
    button->setPalette(NoteTheme::palette(ColorScheme::light));
    button->resize(button->sizeHint());
    return button;
}

} // namespace

void QuietIconButtonTest::measuresThirtyByThirty()
{
    FixedEnvironment environment(ColorScheme::light);
    auto *layout = new QVBoxLayout(&environment);
    auto *button = new QuietIconButton(u"minus"_s);
    layout->addWidget(button);
    environment.resize(200, 200);
    environment.show();

    QCOMPARE(button->size(), QSize(30, 30));
}

void QuietIconButtonTest::drawsItsSymbolInThirteenPointsInTheMiddle()
{
    const auto button = makeButton();
    QImage expected(30, 30, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    Symbol::paint(painter, QRectF(0, 0, 30, 30), u"minus"_s, 13,
                  NoteTheme::color(button->palette(), Tone::secondary), QFont::Medium);
    painter.end();

    QCOMPARE(Pixels::draw(*button), expected);
}

void QuietIconButtonTest::takesClicksInItsWholeSquare()
{
    const auto button = makeButton();
    button->show();
    QSignalSpy clicked(button.get(), &QAbstractButton::clicked);

    for (const QPoint corner : {QPoint(0, 0), QPoint(29, 0), QPoint(0, 29), QPoint(29, 29)})
        QTest::mouseClick(button.get(), Qt::LeftButton, {}, corner);

    QCOMPARE(clicked.size(), 4);
}

void QuietIconButtonTest::isPressedByReturnAndSpace()
{
    const auto button = makeButton();
    QSignalSpy clicked(button.get(), &QAbstractButton::clicked);

    QTest::keyClick(button.get(), Qt::Key_Space);
    QTest::keyClick(button.get(), Qt::Key_Return);
    QTest::keyClick(button.get(), Qt::Key_Enter, Qt::KeypadModifier);

    QCOMPARE(clicked.size(), 3);
}

void QuietIconButtonTest::leavesShortcutsToItsScreen()
{
    const auto button = makeButton();
    QSignalSpy clicked(button.get(), &QAbstractButton::clicked);

    QTest::keyClick(button.get(), Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(button.get(), Qt::Key_Return, Qt::MetaModifier);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(button.get(), &escape);

    QCOMPARE(clicked.size(), 0);
    QVERIFY(!escape.isAccepted());
}

void QuietIconButtonTest::saysWhatItDoes()
{
    const auto button = makeButton();
    button->setLabel(u"Delete note"_s);

    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button.get());
    QVERIFY(accessible);
    QCOMPARE(button->toolTip(), u"Delete note"_s);
    QCOMPARE(accessible->text(QAccessible::Name), u"Delete note"_s);
    QCOMPARE(accessible->role(), QAccessible::Button);
    QVERIFY(accessible->actionInterface());
    QVERIFY(accessible->actionInterface()->actionNames().contains(
        QAccessibleActionInterface::pressAction()));
}

void QuietIconButtonTest::leavesTheKeyboardWhereItIsWhenClicked()
{
    const auto button = makeButton();

    QCOMPARE(button->focusPolicy(), Qt::TabFocus);
}

void QuietIconButtonTest::showsAKeyboardFocusAlone()
{
    FixedEnvironment environment(ColorScheme::light);
    auto *first = new QuietIconButton(u"minus"_s, &environment);
    auto *second = new QuietIconButton(u"minus"_s, &environment);
    second->move(40, 0);
    environment.show();
    environment.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&environment));

    second->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(&environment, Qt::Key_Tab);
    QVERIFY(first->hasFocus());
    QVERIFY(Pixels::isAlike(Pixels::draw(*first).pixelColor(0, 15), NoteTheme::accent()));
    QCOMPARE(Pixels::draw(*second).pixelColor(0, 15).alpha(), 0);

    second->setFocus(Qt::OtherFocusReason);
    QVERIFY(second->hasFocus());
    QCOMPARE(Pixels::draw(*second).pixelColor(0, 15).alpha(), 0);
}

void QuietIconButtonTest::drawsNothingOfItsOwnWhilePressed()
{
    const auto button = makeButton();
    const QImage released = Pixels::draw(*button);

    button->setDown(true);

    QCOMPARE(Pixels::draw(*button), released);
}

void QuietIconButtonTest::isDimmedWhileDisabled()
{
    const auto button = makeButton();
    const QRect ink = Pixels::inkBounds(Pixels::draw(*button));
    const int alpha = Pixels::draw(*button).pixelColor(ink.center()).alpha();

    button->setEnabled(false);

    const int dimmed = Pixels::draw(*button).pixelColor(ink.center()).alpha();
    QVERIFY(std::abs(dimmed - alpha * 0.45) <= 3);
}

QTEST_MAIN(QuietIconButtonTest)
#include "QuietIconButtonTest.moc"
