// SPDX-License-Identifier: MIT
#include "StrayPressFilter.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>
#include <QWindow>

class StrayPressFilterTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void keepsTheSecondPressFromWhatTheFirstBrought();
    void letsASecondPressOnTheSameThrough();
    void letsALaterPressThrough();
    void letsAPressThroughWhenSomethingWasTypedSince();
    void letsAPressElsewhereThrough();
    void lettingThroughGoesOnAfterAStrayClick();

private:
    /// A click as the platform tells it to the window on top, at a time in milliseconds.
    void click(QPoint place, int time) const;

    StrayPressFilter m_filter;
    QWidget m_window;
    QPushButton m_under{&m_window};
    QPushButton m_over{&m_window};
};

void StrayPressFilterTest::init()
{
    m_window.resize(200, 200);
    m_under.setGeometry(0, 0, 200, 100);
    m_over.setGeometry(0, 0, 200, 50);
    m_over.show();
    m_window.show();
    connect(&m_over, &QPushButton::clicked, &m_over, &QWidget::hide, Qt::UniqueConnection);
    QVERIFY(QTest::qWaitForWindowExposed(&m_window));
    // Apart from the test before.
    click({190, 190}, 0);
}

void StrayPressFilterTest::click(QPoint place, int time) const
{
    static quint64 now = 1000;
    if (time == 0)
        now += 100'000;
    QWindow *const window = m_window.windowHandle();
    const QPoint global = m_window.mapToGlobal(place);
    QMouseEvent press(QEvent::MouseButtonPress, place, global, Qt::LeftButton, Qt::LeftButton, {});
    press.setTimestamp(now + quint64(time));
    QCoreApplication::sendEvent(window, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, place, global, Qt::LeftButton, {}, {});
    release.setTimestamp(now + quint64(time) + 1);
    QCoreApplication::sendEvent(window, &release);
}

void StrayPressFilterTest::keepsTheSecondPressFromWhatTheFirstBrought()
{
    const QSignalSpy over(&m_over, &QPushButton::clicked);
    const QSignalSpy under(&m_under, &QPushButton::clicked);

    click({20, 20}, 1000);
    click({22, 21}, 1200);

    QCOMPARE(over.size(), 1);
    QCOMPARE(under.size(), 0);
    QVERIFY(!m_under.isDown());
}

void StrayPressFilterTest::letsASecondPressOnTheSameThrough()
{
    const QSignalSpy under(&m_under, &QPushButton::clicked);

    click({20, 70}, 1000);
    click({20, 70}, 1100);

    QCOMPARE(under.size(), 2);
}

void StrayPressFilterTest::letsALaterPressThrough()
{
    const QSignalSpy under(&m_under, &QPushButton::clicked);

    click({20, 20}, 1000);
    click({20, 20}, 1000 + QGuiApplication::styleHints()->mouseDoubleClickInterval());

    QCOMPARE(under.size(), 1);
}

void StrayPressFilterTest::letsAPressThroughWhenSomethingWasTypedSince()
{
    const QSignalSpy under(&m_under, &QPushButton::clicked);

    click({20, 20}, 1000);
    QTest::keyClick(&m_under, Qt::Key_A);
    click({20, 20}, 1100);

    QCOMPARE(under.size(), 1);
}

void StrayPressFilterTest::letsAPressElsewhereThrough()
{
    const QSignalSpy under(&m_under, &QPushButton::clicked);

    click({20, 20}, 1000);
    click({60, 20}, 1100);

    QCOMPARE(under.size(), 1);
}

void StrayPressFilterTest::lettingThroughGoesOnAfterAStrayClick()
{
    const QSignalSpy under(&m_under, &QPushButton::clicked);
    click({20, 20}, 1000);
    click({20, 20}, 1100);

    click({20, 20}, 2000);

    QCOMPARE(under.size(), 1);
}

QTEST_MAIN(StrayPressFilterTest)
#include "StrayPressFilterTest.moc"
