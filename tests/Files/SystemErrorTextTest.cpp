// SPDX-License-Identifier: MIT
#include "SystemErrorText.h"

#include <QTest>
#include <cstring>

class SystemErrorTextTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysWhatTheSystemSays();
};

void SystemErrorTextTest::saysWhatTheSystemSays()
{
    int known = 0;
    for (int error = 1; error < 200; ++error) {
        const QString text = systemErrorText(error);
        if (text.isEmpty())
            continue;
        QCOMPARE(text, QString::fromLatin1(strerrordesc_np(error)));
        ++known;
    }
    QVERIFY(known > 40);
}

QTEST_GUILESS_MAIN(SystemErrorTextTest)
#include "SystemErrorTextTest.moc"
