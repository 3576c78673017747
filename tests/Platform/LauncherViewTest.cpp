// SPDX-License-Identifier: MIT
#include "LauncherView.h"

#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "FakeScreens.h"
#include "LauncherHitView.h"
#include "NoteTheme.h"
#include "SystemAppearance.h"

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
    void onlyChangesItsColourWhenMotionIsReduced();
    void drawsThePlusInTheAccentColourUnderThePointer();
    void forgetsThePointerWhileItIsHidden();
    void drawsADarkSurfaceInTheDarkScheme();
    void isOpaqueWhenTransparencyIsReduced();
    void coversItselfWithTheHitView();
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
    enter(*m_view);

    QCOMPARE(m_view->disc(), discAtRest);
    QTRY_VERIFY(m_view->disc().width() > discAtRest.width());
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
