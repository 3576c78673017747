// SPDX-License-Identifier: MIT
#include "LauncherView.h"

#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "FakeScreens.h"
#include "LauncherHitView.h"
#include "NoteTheme.h"
#include "SystemAppearance.h"

#include <QAccessible>
#include <QAnimationDriver>
#include <QCursor>
#include <QEnterEvent>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRectF discAtRest(5, 5, 54, 54);

void enter(QWidget &view)
{
    const QPointF middle = view.rect().center();
    QEnterEvent event(middle, middle, middle);
    QCoreApplication::sendEvent(&view, &event);
}

void leave(QWidget &view)
{
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&view, &event);
}

/// The time of all animations, which passes only when a test says so.
class AnimationTime final : public QAnimationDriver {
public:
    AnimationTime() { install(); }
    ~AnimationTime() override { uninstall(); }
    Q_DISABLE_COPY_MOVE(AnimationTime)

    [[nodiscard]] qint64 elapsed() const override { return m_milliseconds; }

    /// Since the first animation began.
    void passTo(qint64 milliseconds)
    {
        // An animation that was just started waits for events before and after an advance.
        QCoreApplication::processEvents();
        advance();
        QCoreApplication::processEvents();
        m_milliseconds = milliseconds;
        advance();
    }

private:
    qint64 m_milliseconds = 0;
};

/// Of the element and all below it those that have a name or can be pressed.
QList<QAccessibleInterface *> elements(QAccessibleInterface *root)
{
    QList<QAccessibleInterface *> result;
    QAccessibleActionInterface *actions = root->actionInterface();
    if (!root->text(QAccessible::Name).isEmpty() || (actions && !actions->actionNames().isEmpty()))
        result.append(root);
    for (int i = 0; i < root->childCount(); ++i)
        result += elements(root->child(i));
    return result;
}

bool isNear(const QColor &color, const QColor &expected)
{
    constexpr int tolerance = 12;
    return qAbs(color.red() - expected.red()) < tolerance &&
           qAbs(color.green() - expected.green()) < tolerance &&
           qAbs(color.blue() - expected.blue()) < tolerance;
}

} // namespace

class LauncherViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void drawsADiscInTheMiddleOfTheLauncher();
    void growsUnderThePointerAndStaysCentred();
    void growsGradually();
    void easesOutWithinSixteenHundredthsOfASecond();
    void shrinksOnTheSameCurve();
    void onlyChangesItsColourWhenMotionIsReduced();
    void drawsThePlusInTheAccentColourUnderThePointer();
    void forgetsThePointerWhileItIsHidden();
    void drawsADarkSurfaceInTheDarkScheme();
    void isOpaqueWhenTransparencyIsReduced();
    void coversItselfWithTheHitView();
    void isASingleElementToAssistiveTools();
    void passesOnWhatTheHitViewAsksFor();
    void followsTheLanguageWithoutBeingRebuilt();

private:
    [[nodiscard]] QColor colorAt(QPoint position) const;

    FakeScreens m_screens;
    SystemAppearance m_system;
    std::unique_ptr<AppPreferences> m_preferences;
    std::unique_ptr<AppEnvironment> m_environment;
    LauncherView *m_view = nullptr;
};

void LauncherViewTest::init()
{
    m_system.setValues({});
    m_environment.reset();
    m_preferences =
        std::make_unique<AppPreferences>(nullptr, AppLanguage::english, AppAppearance::system);
    m_environment = std::make_unique<AppEnvironment>(*m_preferences, m_system);
    m_environment->setAttribute(Qt::WA_TranslucentBackground);
    m_view = new LauncherView(*m_preferences, m_screens);
    m_environment->setContent(m_view);
    // Away from the launcher, which would otherwise come up under the pointer.
    QCursor::setPos(m_environment->mapToGlobal(QPoint(400, 400)));
    m_environment->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_environment.get()));
}

QColor LauncherViewTest::colorAt(QPoint position) const
{
    return m_environment->grab().toImage().pixelColor(position);
}

void LauncherViewTest::drawsADiscInTheMiddleOfTheLauncher()
{
    QCOMPARE(m_view->size(), QSize(64, 64));
    QCOMPARE(m_view->disc(), discAtRest);
    QCOMPARE(colorAt({0, 0}).alpha(), 0);
    QVERIFY(colorAt({20, 20}).alpha() > 200);
}

void LauncherViewTest::growsUnderThePointerAndStaysCentred()
{
    enter(*m_view);

    QTRY_COMPARE(m_view->disc().width(), 54 * 1.04);
    QCOMPARE(m_view->disc().height(), 54 * 1.04);
    QCOMPARE(m_view->disc().center(), QPointF(32, 32));

    leave(*m_view);
    QTRY_COMPARE(m_view->disc(), discAtRest);
}

void LauncherViewTest::growsGradually()
{
    AnimationTime time;
    enter(*m_view);
    QCOMPARE(m_view->disc(), discAtRest);

    double width = discAtRest.width();
    for (const int milliseconds : {20, 60, 100, 140}) {
        time.passTo(milliseconds);
        QVERIFY(m_view->disc().width() > width);
        QCOMPARE(m_view->disc().center(), QPointF(32, 32));
        width = m_view->disc().width();
    }
    QVERIFY(width < 54 * 1.04);
}

void LauncherViewTest::easesOutWithinSixteenHundredthsOfASecond()
{
    AnimationTime time;

    enter(*m_view);

    // How much of the growth is done after a quarter, half and three quarters of the time.
    const auto growth = [this] { return (m_view->disc().width() / 54 - 1) / 0.04; };
    time.passTo(40);
    QVERIFY2(qAbs(growth() - 0.378) < 0.001, qPrintable(QString::number(growth())));
    time.passTo(80);
    QVERIFY2(qAbs(growth() - 0.685) < 0.001, qPrintable(QString::number(growth())));
    time.passTo(120);
    QVERIFY2(qAbs(growth() - 0.907) < 0.001, qPrintable(QString::number(growth())));
    time.passTo(159);
    QVERIFY(growth() < 1);
    time.passTo(160);
    QCOMPARE(m_view->disc().width(), 54 * 1.04);
}

void LauncherViewTest::shrinksOnTheSameCurve()
{
    AnimationTime time;
    enter(*m_view);
    time.passTo(160);

    leave(*m_view);

    const auto shrinking = [this] { return (54 * 1.04 - m_view->disc().width()) / (54 * 0.04); };
    time.passTo(160 + 80);
    QVERIFY2(qAbs(shrinking() - 0.685) < 0.001, qPrintable(QString::number(shrinking())));
    time.passTo(160 + 160);
    QCOMPARE(m_view->disc(), discAtRest);
}

void LauncherViewTest::onlyChangesItsColourWhenMotionIsReduced()
{
    m_system.setValues({.reduceMotion = true});

    enter(*m_view);

    QCOMPARE(m_view->disc(), discAtRest);
    QVERIFY(isNear(colorAt({32, 32}), NoteTheme::accent()));
    leave(*m_view);
    QVERIFY(!isNear(colorAt({32, 32}), NoteTheme::accent()));
}

void LauncherViewTest::drawsThePlusInTheAccentColourUnderThePointer()
{
    QVERIFY(isNear(colorAt({32, 32}),
                   NoteTheme::color(NoteTheme::palette(ColorScheme::light), Tone::primary)));

    enter(*m_view);

    QTRY_VERIFY(isNear(colorAt({32, 32}), NoteTheme::accent()));
}

void LauncherViewTest::forgetsThePointerWhileItIsHidden()
{
    enter(*m_view);
    QTRY_COMPARE(m_view->disc().width(), 54 * 1.04);

    m_environment->hide();
    m_environment->show();

    QCOMPARE(m_view->disc(), discAtRest);
}

void LauncherViewTest::drawsADarkSurfaceInTheDarkScheme()
{
    const int lightness = colorAt({20, 20}).lightness();

    m_system.setValues({.colorScheme = ColorScheme::dark});

    QVERIFY(colorAt({20, 20}).lightness() < lightness - 100);
}

void LauncherViewTest::isOpaqueWhenTransparencyIsReduced()
{
    QVERIFY(colorAt({20, 20}).alpha() < 255);

    m_system.setValues({.highContrast = true});

    QCOMPARE(colorAt({20, 20}).alpha(), 255);
    QCOMPARE(colorAt({32, 2}).alpha(), 0);
}

void LauncherViewTest::coversItselfWithTheHitView()
{
    const auto *hitView = m_view->findChild<LauncherHitView *>(u"floatingLauncher"_s);

    QVERIFY(hitView);
    QCOMPARE(hitView->geometry(), m_view->rect());
    QCOMPARE(m_view->childAt(0, 0), hitView);
}

void LauncherViewTest::isASingleElementToAssistiveTools()
{
    const QList<QAccessibleInterface *> found =
        elements(QAccessible::queryAccessibleInterface(m_environment.get()));

    QCOMPARE(found.size(), 1);
    QCOMPARE(found.constFirst()->object(), m_view->findChild<LauncherHitView *>());
    QCOMPARE(found.constFirst()->role(), QAccessible::Button);
    QCOMPARE(found.constFirst()->text(QAccessible::Name), u"New note"_s);
}

void LauncherViewTest::passesOnWhatTheHitViewAsksFor()
{
    auto *hitView = m_view->findChild<LauncherHitView *>();
    const QSignalSpy opened(m_view, &LauncherView::openRequested);
    const QSignalSpy moved(m_view, &LauncherView::moved);
    const QSignalSpy quit(m_view, &LauncherView::quitRequested);

    Q_EMIT hitView->openRequested();
    Q_EMIT hitView->moved({1, 2}, true);
    Q_EMIT hitView->quitRequested();

    QCOMPARE(opened.size(), 1);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(quit.size(), 1);
}

void LauncherViewTest::followsTheLanguageWithoutBeingRebuilt()
{
    const QString english = u"Click to capture · Drag to move · Right-click to quit"_s;
    QCOMPARE(m_view->toolTip(), english);

    m_preferences->setLanguage(AppLanguage::chinese);

    QCOMPARE(m_view->toolTip(), m_preferences->text(english));
    QVERIFY(m_view->toolTip() != english);
}

QTEST_MAIN(LauncherViewTest)
#include "LauncherViewTest.moc"
