// SPDX-License-Identifier: MIT
#include "FloatingPanel.h"

#include "Metrics.h"

#include <QAccessible>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

Q_DECLARE_METATYPE(FloatingPanel::Kind)

class FloatingPanelTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAFramelessTranslucentWindowOfItsContentsSize();
    void isAWindowNamedQuillmarkToAssistiveTools_data();
    void isAWindowNamedQuillmarkToAssistiveTools();
    void keepsTheLauncherAwayFromTheKeyboard();
    void letsTheEditorTakeTheKeyboard();
    void neverKeepsTheProgramRunningNorEndsIt();

    void runsOnEscapeOncePerKeyPress();
    void runsOnEscapeAlsoFromWithinItsContent();
    void doesNothingOnEscapeWithoutACallback();
    void ignoresOtherKeys();
    void leavesEscapeToAnOpenMenu();
    void leavesEscapeToAnInputMethodThatComposes();

    void foldsInsteadOfClosing();
    void staysOpenWhenItCannotFold();

    void fillsItselfWithItsContent();
    void deletesTheContentThatIsReplaced();
    void survivesAContentThatReplacesItself();
};

void FloatingPanelTest::isAFramelessTranslucentWindowOfItsContentsSize()
{
    const FloatingPanel launcher(FloatingPanel::Kind::launcher, Metrics::launcherSize);
    const FloatingPanel editor(FloatingPanel::Kind::editor, Metrics::panelSize);

    QCOMPARE(launcher.size(), QSize(64, 64));
    QCOMPARE(editor.size(), QSize(424, 560));
    for (const FloatingPanel *panel : {&launcher, &editor}) {
        QVERIFY(panel->isWindow());
        QVERIFY(panel->testAttribute(Qt::WA_TranslucentBackground));
        QVERIFY(panel->windowFlags().testFlag(Qt::FramelessWindowHint));
        QVERIFY(panel->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QCOMPARE(panel->windowType(), Qt::Tool);
    }
}

void FloatingPanelTest::isAWindowNamedQuillmarkToAssistiveTools_data()
{
    QTest::addColumn<FloatingPanel::Kind>("kind");
    QTest::addColumn<QSize>("size");

    QTest::newRow("launcher") << FloatingPanel::Kind::launcher << Metrics::launcherSize;
    QTest::newRow("editor") << FloatingPanel::Kind::editor << Metrics::panelSize;
}

void FloatingPanelTest::isAWindowNamedQuillmarkToAssistiveTools()
{
    QFETCH(const FloatingPanel::Kind, kind);
    QFETCH(const QSize, size);

    FloatingPanel panel(kind, size);

    const QAccessibleInterface *element = QAccessible::queryAccessibleInterface(&panel);
    QCOMPARE(panel.windowTitle(), u"Quillmark"_s);
    QVERIFY(element);
    QCOMPARE(element->role(), QAccessible::Window);
    QCOMPARE(element->text(QAccessible::Name), u"Quillmark"_s);
}

void FloatingPanelTest::keepsTheLauncherAwayFromTheKeyboard()
{
    const FloatingPanel launcher(FloatingPanel::Kind::launcher, Metrics::launcherSize);

    QVERIFY(launcher.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    QVERIFY(launcher.windowFlags().testFlag(Qt::X11BypassWindowManagerHint));
    QVERIFY(launcher.testAttribute(Qt::WA_ShowWithoutActivating));
}

void FloatingPanelTest::letsTheEditorTakeTheKeyboard()
{
    FloatingPanel editor(FloatingPanel::Kind::editor, Metrics::panelSize);

    editor.makeKey();

    QVERIFY(editor.isVisible());
    QVERIFY(QTest::qWaitForWindowActive(&editor));
}

void FloatingPanelTest::neverKeepsTheProgramRunningNorEndsIt()
{
    const FloatingPanel editor(FloatingPanel::Kind::editor, Metrics::panelSize);

    QVERIFY(!editor.testAttribute(Qt::WA_QuitOnClose));
    QVERIFY(!editor.testAttribute(Qt::WA_DeleteOnClose));
}

void FloatingPanelTest::runsOnEscapeOncePerKeyPress()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    int escaped = 0;
    panel.onEscape = [&escaped] { ++escaped; };

    QTest::keyPress(&panel, Qt::Key_Escape);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Escape, {}, {}, true);
    QCoreApplication::sendEvent(&panel, &repeated);
    QTest::keyRelease(&panel, Qt::Key_Escape);
    QCOMPARE(escaped, 1);

    QTest::keyClick(&panel, Qt::Key_Escape);
    QCOMPARE(escaped, 2);
}

void FloatingPanelTest::runsOnEscapeAlsoFromWithinItsContent()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    auto *field = new QLineEdit;
    panel.setContent(field);
    int escaped = 0;
    panel.onEscape = [&escaped] { ++escaped; };

    QTest::keyClick(field, Qt::Key_Escape);

    QCOMPARE(escaped, 1);
}

void FloatingPanelTest::doesNothingOnEscapeWithoutACallback()
{
    FloatingPanel panel(FloatingPanel::Kind::launcher, Metrics::launcherSize);
    panel.show();

    QTest::keyClick(&panel, Qt::Key_Escape);

    QVERIFY(panel.isVisible());
}

void FloatingPanelTest::ignoresOtherKeys()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    int escaped = 0;
    panel.onEscape = [&escaped] { ++escaped; };

    QTest::keyClick(&panel, Qt::Key_Return);
    QTest::keyClick(&panel, Qt::Key_Escape, Qt::ControlModifier);

    QCOMPARE(escaped, 0);
}

void FloatingPanelTest::leavesEscapeToAnOpenMenu()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    int escaped = 0;
    panel.onEscape = [&escaped] { ++escaped; };
    panel.makeKey();
    QMenu menu(&panel);
    menu.addAction(u"English"_s);
    menu.popup(panel.mapToGlobal(QPoint(10, 10)));

    QTest::keyClick(panel.windowHandle(), Qt::Key_Escape);
    QVERIFY(!menu.isVisible());
    QCOMPARE(escaped, 0);

    QTest::keyClick(panel.windowHandle(), Qt::Key_Escape);
    QCOMPARE(escaped, 1);
}

void FloatingPanelTest::leavesEscapeToAnInputMethodThatComposes()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    auto *field = new QLineEdit;
    panel.setContent(field);
    int escaped = 0;
    panel.onEscape = [&escaped] { ++escaped; };
    panel.makeKey();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    field->setFocus();

    QInputMethodEvent composing(u"ni"_s, {});
    QCoreApplication::sendEvent(field, &composing);
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(escaped, 0);

    QInputMethodEvent committed;
    committed.setCommitString(u"你"_s);
    QCoreApplication::sendEvent(field, &committed);
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(escaped, 1);
}

void FloatingPanelTest::foldsInsteadOfClosing()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    int folded = 0;
    panel.onEscape = [&panel, &folded] {
        ++folded;
        panel.hide();
    };
    panel.makeKey();

    panel.close();

    QCOMPARE(folded, 1);
    QVERIFY(!panel.isVisible());

    panel.makeKey();
    QVERIFY(panel.isVisible());
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
}

void FloatingPanelTest::staysOpenWhenItCannotFold()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    panel.onEscape = [] {};
    panel.makeKey();

    QVERIFY(!panel.close());

    QVERIFY(panel.isVisible());
}

void FloatingPanelTest::fillsItselfWithItsContent()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    auto *content = new QWidget;

    panel.setContent(content);
    panel.show();

    QCOMPARE(content->geometry(), panel.rect());
}

void FloatingPanelTest::deletesTheContentThatIsReplaced()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    const QPointer<QWidget> first = new QWidget;
    panel.setContent(first);
    panel.show();

    auto *second = new QWidget;
    panel.setContent(second);

    QTRY_VERIFY(first.isNull());
    QTRY_COMPARE(second->geometry(), panel.rect());
    QVERIFY(second->isVisible());
}

void FloatingPanelTest::survivesAContentThatReplacesItself()
{
    FloatingPanel panel(FloatingPanel::Kind::editor, Metrics::panelSize);
    const QPointer<QLineEdit> field = new QLineEdit;
    panel.setContent(field);
    panel.onEscape = [&panel] { panel.setContent(nullptr); };

    QTest::keyClick(field.data(), Qt::Key_Escape);

    QTRY_VERIFY(field.isNull());
}

QTEST_MAIN(FloatingPanelTest)
#include "FloatingPanelTest.moc"
