// SPDX-License-Identifier: MIT
#include "AccessibleFocus.h"

#include <QAccessible>
#include <QTest>

class AccessibleFocusTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesWhatHasNoInterfaceForNothing();
};

void AccessibleFocusTest::takesWhatHasNoInterfaceForNothing()
{
    AccessibleFocus::tellOnce();
    // As a widget that loses the focus while it is being destroyed.
    QObject halfGone;
    QAccessibleEvent event(&halfGone, QAccessible::Focus);
    QVERIFY(!event.accessibleInterface());

    QAccessible::updateAccessibility(&event);

    QVERIFY(!QAccessible::queryAccessibleInterface(&halfGone));
}

QTEST_MAIN(AccessibleFocusTest)
#include "AccessibleFocusTest.moc"
