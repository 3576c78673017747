// SPDX-License-Identifier: MIT
#include "LauncherHitView.h"

#include "AppPreferences.h"
#include "FakeScreens.h"
#include "PassingTime.h"
#include "ThemedMenu.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

Q_DECLARE_METATYPE(LauncherInteraction::Translation)

namespace {

constexpr QPoint middle(32, 32);

QStringList titles(const QMenu &menu)
{
    QStringList result;
    const QList<QAction *> actions = menu.actions();
    for (const QAction *action : actions)
        result.append(action->isSeparator() ? u"-"_s : action->text());
    return result;
}

/// As the platform tells it, with the buttons that are held.
void send(QWidget &view, QEvent::Type type, QPoint place, Qt::MouseButtons held)
{
    const Qt::MouseButton button = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
    QMouseEvent event(type, place, view.mapToGlobal(place), button, held, {});
    QCoreApplication::sendEvent(&view, &event);
}

/// A drag by (30, 10) that goes on.
void drag(QWidget &view)
{
    send(view, QEvent::MouseButtonPress, middle, Qt::LeftButton);
    send(view, QEvent::MouseMove, middle + QPoint(30, 10), Qt::LeftButton);
}

/// What a view makes of a drop; nothing when it does not take it.
std::optional<DroppedText> drop(const Screens &screens, const QMimeData &data)
{
    LauncherHitView view(screens, nullptr);
    std::optional<DroppedText> result;
    QObject::connect(&view, &LauncherHitView::dropped, &view,
                     [&result](const DroppedText &dropped) { result = dropped; });
    QDragEnterEvent enter(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&view, &enter);
    if (!enter.isAccepted() || enter.dropAction() != Qt::CopyAction)
        return std::nullopt;
    QDropEvent event(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&view, &event);
    return result;
}

} // namespace

class LauncherHitViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opensOnAClick();
    void opensOnALongPressThatDoesNotMove();
    void opensOnAClickWithControlAsWell();
    void actsOnTheFirstClickWhileAnotherProgramIsActive();
    void takesAPressInACornerOutsideTheDisc();
    void reportsADragInScreenPoints();
    void ignoresTheOtherButtonsOfTheMouse();
    void ignoresAReleaseWithoutAPress();
    void endsADragAtAMoveWithoutTheButton();
    void endsADragWhenItIsHidden();
    void endsADragWhenItsMenuOpens();

    void takesTextThatIsDropped();
    void takesAddressesThatAreDroppedALineEach();
    void refusesWhatIsNoText_data();
    void refusesWhatIsNoText();

    void hasAMenuOfTwoItemsAndASeparator();
    void opensItsMenuOnARightClickAndDoesNothingElse();
    void actsOnTheItemsOfTheMenu();
    void showsTheMenuInTheChosenLanguage();

    void isAButtonNamedNewNoteToAssistiveTools();
    void followsTheLanguageWithItsName();
    void opensWhenAnAssistiveToolPressesIt();
    void opensItsMenuForAnAssistiveTool();

private:
    FakeScreens m_screens;
};

void LauncherHitViewTest::opensOnAClick()
{
    LauncherHitView view(m_screens, nullptr);
    view.resize(64, 64);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy moved(&view, &LauncherHitView::moved);

    QTest::mousePress(&view, Qt::LeftButton, {}, middle);
    QCOMPARE(opened.size(), 0);

    QTest::mouseRelease(&view, Qt::LeftButton, {}, middle);
    QCOMPARE(opened.size(), 1);
    QCOMPARE(moved.size(), 0);
}

void LauncherHitViewTest::opensOnALongPressThatDoesNotMove()
{
    LauncherHitView view(m_screens, nullptr);
    view.show();
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy moved(&view, &LauncherHitView::moved);

    QTest::mousePress(&view, Qt::LeftButton, {}, middle);
    PassingTime::pass(10s);
    QTest::lastMouseTimestamp += 10'000;
    QCOMPARE(opened.size(), 0);
    QVERIFY(!view.findChild<QMenu *>());
    QTest::mouseRelease(&view, Qt::LeftButton, {}, middle);

    QCOMPARE(opened.size(), 1);
    QCOMPARE(moved.size(), 0);
}

void LauncherHitViewTest::opensOnAClickWithControlAsWell()
{
    LauncherHitView view(m_screens, nullptr);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy moved(&view, &LauncherHitView::moved);

    QTest::mouseClick(&view, Qt::LeftButton, Qt::ControlModifier, middle);

    QCOMPARE(opened.size(), 1);
    QCOMPARE(moved.size(), 0);
    QVERIFY(!view.findChild<QMenu *>());
}

void LauncherHitViewTest::actsOnTheFirstClickWhileAnotherProgramIsActive()
{
    LauncherHitView view(m_screens, nullptr);
    view.show();
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);

    QTest::mouseClick(&view, Qt::LeftButton, {}, middle);

    QCOMPARE(opened.size(), 1);
}

void LauncherHitViewTest::takesAPressInACornerOutsideTheDisc()
{
    LauncherHitView view(m_screens, nullptr);
    view.resize(64, 64);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);

    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(0, 0));
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(63, 63));

    QCOMPARE(opened.size(), 2);
}

void LauncherHitViewTest::reportsADragInScreenPoints()
{
    LauncherHitView view(m_screens, nullptr);
    QSignalSpy moved(&view, &LauncherHitView::moved);

    QTest::mousePress(&view, Qt::LeftButton, {}, middle);
    QTest::mouseMove(&view, middle + QPoint(30, 10));
    QTRY_COMPARE(moved.size(), 1);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, middle + QPoint(30, 20));

    QCOMPARE(moved.size(), 2);
    QCOMPARE(moved.at(0).at(0).value<LauncherInteraction::Translation>(), (Size{30, 10}));
    QCOMPARE(moved.at(0).at(1).toBool(), false);
    QCOMPARE(moved.at(1).at(0).value<LauncherInteraction::Translation>(), (Size{30, 20}));
    QCOMPARE(moved.at(1).at(1).toBool(), true);
}

void LauncherHitViewTest::ignoresTheOtherButtonsOfTheMouse()
{
    LauncherHitView view(m_screens, nullptr);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy moved(&view, &LauncherHitView::moved);

    for (const Qt::MouseButton button : {Qt::MiddleButton, Qt::RightButton}) {
        QTest::mouseClick(&view, button, {}, middle);

        QTest::mousePress(&view, button, {}, middle);
        QTest::mouseMove(&view, middle + QPoint(30, 10));
        QTest::mouseRelease(&view, button, {}, middle + QPoint(30, 10));
    }

    QCOMPARE(opened.size(), 0);
    QCOMPARE(moved.size(), 0);
}

void LauncherHitViewTest::ignoresAReleaseWithoutAPress()
{
    // As when the press closed a menu.
    LauncherHitView view(m_screens, nullptr);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);

    QTest::mouseRelease(&view, Qt::LeftButton, {}, middle);

    QCOMPARE(opened.size(), 0);
}

void LauncherHitViewTest::endsADragAtAMoveWithoutTheButton()
{
    LauncherHitView view(m_screens, nullptr);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy moved(&view, &LauncherHitView::moved);
    drag(view);

    send(view, QEvent::MouseMove, middle + QPoint(90, 90), Qt::MiddleButton);
    send(view, QEvent::MouseMove, middle + QPoint(95, 95), Qt::NoButton);

    QCOMPARE(moved.size(), 2);
    QCOMPARE(moved.at(1).at(0).value<LauncherInteraction::Translation>(), (Size{30, 10}));
    QCOMPARE(moved.at(1).at(1).toBool(), true);
    QCOMPARE(opened.size(), 0);
}

void LauncherHitViewTest::endsADragWhenItIsHidden()
{
    LauncherHitView view(m_screens, nullptr);
    view.show();
    const QSignalSpy moved(&view, &LauncherHitView::moved);
    drag(view);

    view.hide();

    QCOMPARE(moved.size(), 2);
    QCOMPARE(moved.at(1).at(1).toBool(), true);
}

void LauncherHitViewTest::endsADragWhenItsMenuOpens()
{
    LauncherHitView view(m_screens, nullptr);
    view.show();
    const QSignalSpy moved(&view, &LauncherHitView::moved);
    drag(view);

    view.showMenu();

    QCOMPARE(moved.size(), 2);
    QCOMPARE(moved.at(1).at(1).toBool(), true);
}

void LauncherHitViewTest::takesTextThatIsDropped()
{
    QMimeData data;
    data.setText(u"a quote"_s);

    const std::optional<DroppedText> dropped = drop(m_screens, data);

    QVERIFY(dropped && !dropped->refusal);
    QCOMPARE(dropped->text, u"a quote"_s);
}

void LauncherHitViewTest::takesAddressesThatAreDroppedALineEach()
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(u"/tmp/a file.txt"_s), QUrl(u"https://example.org/#1"_s)});

    const std::optional<DroppedText> dropped = drop(m_screens, data);

    QVERIFY(dropped && !dropped->refusal);
    QCOMPARE(dropped->text, u"file:///tmp/a%20file.txt\nhttps://example.org/#1"_s);
}

void LauncherHitViewTest::refusesWhatIsNoText_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("refusal");

    QTest::newRow("blank") << " \n"_ba << u"Not kept: there is no text in what was dropped."_s;
    QTest::newRow("not UTF-8") << "caf\xe9"_ba << u"Not kept: what was dropped is no UTF-8 text."_s;
    QTest::newRow("too long")
        << QByteArray(1'200'001, 'x')
        << u"Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters."_s;
    QTest::newRow("too many lines")
        << QByteArray(1'000'001, '\n') + 'x'
        << u"Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters."_s;
}

void LauncherHitViewTest::refusesWhatIsNoText()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, refusal);
    QMimeData data;
    data.setData(u"text/plain;charset=utf-8"_s, bytes);

    const std::optional<DroppedText> dropped = drop(m_screens, data);

    QVERIFY(dropped && dropped->refusal);
    QCOMPARE(dropped->refusal->key, refusal);
}

void LauncherHitViewTest::hasAMenuOfTwoItemsAndASeparator()
{
    LauncherHitView view(m_screens, nullptr);

    QCOMPARE(titles(*view.makeMenu()), (QStringList{u"New note"_s, u"-"_s, u"Quit Quillmark"_s}));
}

void LauncherHitViewTest::opensItsMenuOnARightClickAndDoesNothingElse()
{
    LauncherHitView view(m_screens, nullptr);
    view.show();
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy moved(&view, &LauncherHitView::moved);
    const QSignalSpy quit(&view, &LauncherHitView::quitRequested);

    QTest::mousePress(&view, Qt::RightButton, {}, middle);
    QContextMenuEvent event(QContextMenuEvent::Mouse, middle, view.mapToGlobal(middle));
    QCoreApplication::sendEvent(&view, &event);
    QTest::mouseRelease(&view, Qt::RightButton, {}, middle);

    const auto *menu = view.findChild<QMenu *>();
    QVERIFY(menu);
    QVERIFY(menu->isVisible());
    QCOMPARE(opened.size(), 0);
    QCOMPARE(moved.size(), 0);
    QCOMPARE(quit.size(), 0);
}

void LauncherHitViewTest::actsOnTheItemsOfTheMenu()
{
    LauncherHitView view(m_screens, nullptr);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    const QSignalSpy quit(&view, &LauncherHitView::quitRequested);
    const QMenu *menu = view.makeMenu();

    menu->actions().constFirst()->trigger();
    QCOMPARE(opened.size(), 1);
    QCOMPARE(quit.size(), 0);

    menu->actions().constLast()->trigger();
    QCOMPARE(quit.size(), 1);
}

void LauncherHitViewTest::showsTheMenuInTheChosenLanguage()
{
    AppPreferences preferences(nullptr, AppLanguage::chinese);
    LauncherHitView view(m_screens, &preferences);

    QCOMPARE(titles(*view.makeMenu()), (QStringList{preferences.text(u"New note"_s), u"-"_s,
                                                    preferences.text(u"Quit Quillmark"_s)}));
    QVERIFY(titles(*view.makeMenu()).constFirst() != u"New note"_s);

    preferences.setLanguage(AppLanguage::english);
    QCOMPARE(titles(*view.makeMenu()).constFirst(), u"New note"_s);
}

void LauncherHitViewTest::isAButtonNamedNewNoteToAssistiveTools()
{
    LauncherHitView view(m_screens, nullptr);
    QAccessibleInterface *element = QAccessible::queryAccessibleInterface(&view);

    QCOMPARE(view.objectName(), u"floatingLauncher"_s);
    QVERIFY(element);
    QCOMPARE(element->role(), QAccessible::Button);
    QCOMPARE(element->text(QAccessible::Name), u"New note"_s);
}

void LauncherHitViewTest::followsTheLanguageWithItsName()
{
    AppPreferences preferences(nullptr, AppLanguage::english);
    LauncherHitView view(m_screens, &preferences);
    const QAccessibleInterface *element = QAccessible::queryAccessibleInterface(&view);

    preferences.setLanguage(AppLanguage::chinese);

    QCOMPARE(element->text(QAccessible::Name), preferences.text(u"New note"_s));
    QVERIFY(element->text(QAccessible::Name) != u"New note"_s);
}

void LauncherHitViewTest::opensWhenAnAssistiveToolPressesIt()
{
    LauncherHitView view(m_screens, nullptr);
    const QSignalSpy opened(&view, &LauncherHitView::openRequested);
    QAccessibleActionInterface *actions =
        QAccessible::queryAccessibleInterface(&view)->actionInterface();

    QVERIFY(actions);
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());

    QCOMPARE(opened.size(), 1);
}

void LauncherHitViewTest::opensItsMenuForAnAssistiveTool()
{
    LauncherHitView view(m_screens, nullptr);
    view.show();
    QAccessibleActionInterface *actions =
        QAccessible::queryAccessibleInterface(&view)->actionInterface();

    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::showMenuAction()));
    actions->doAction(QAccessibleActionInterface::showMenuAction());

    const auto *menu = view.findChild<QMenu *>();
    QVERIFY(menu);
    QVERIFY(menu->isVisible());
}

QTEST_MAIN(LauncherHitViewTest)
#include "LauncherHitViewTest.moc"
