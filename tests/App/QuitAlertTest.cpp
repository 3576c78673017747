// SPDX-License-Identifier: MIT
#include "QuitAlert.h"

#include "AppPreferences.h"

#include <QAbstractButton>
#include <QTest>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

class QuitAlertTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsItsTextsAsWrittenWithoutPreferences();
    void showsItsTextsInTheChosenLanguage();
    void makesReturningTheDefault();
    void quitsOnlyForTheSecondButton();
    void returnsOnEscapeAndOnClosing();

private:
    /// Lets the user do this once the alert is on screen, and tells the answer.
    template <class Deed>
    static bool answerAfter(const Deed &deed)
    {
        QuitAlert alert(nullptr);
        QTimer::singleShot(0, &alert, [&] { deed(alert); });
        return alert.confirmsQuitting();
    }

    static void click(const QMessageBox &alert, qsizetype button)
    {
        QTest::mouseClick(alert.buttons().at(button), Qt::LeftButton);
    }
};

void QuitAlertTest::showsItsTextsAsWrittenWithoutPreferences()
{
    const QuitAlert alert(nullptr);

    QCOMPARE(alert.text(), u"Some changes could not be saved"_s);
    QCOMPARE(alert.informativeText(),
             u"Return and retry, or copy your text first. Quitting now will lose changes that "
             "could not be written."_s);
    QCOMPARE(alert.buttons().size(), qsizetype(2));
    QCOMPARE(alert.buttons().at(0)->text(), u"Return to notes"_s);
    QCOMPARE(alert.buttons().at(1)->text(), u"Quit anyway"_s);
}

void QuitAlertTest::showsItsTextsInTheChosenLanguage()
{
    const AppPreferences preferences(nullptr, AppLanguage::chinese);

    const QuitAlert alert(&preferences);

    QCOMPARE(alert.text(), u"部分更改未能保存"_s);
    QCOMPARE(alert.informativeText(),
             u"请返回重试，或先复制你的文字。现在退出将丢失未能写入的更改。"_s);
    QCOMPARE(alert.buttons().at(0)->text(), u"返回笔记"_s);
    QCOMPARE(alert.buttons().at(1)->text(), u"仍要退出"_s);
}

void QuitAlertTest::makesReturningTheDefault()
{
    QVERIFY(!answerAfter([](QuitAlert &alert) { QTest::keyClick(&alert, Qt::Key_Return); }));
}

void QuitAlertTest::quitsOnlyForTheSecondButton()
{
    QVERIFY(!answerAfter([](QuitAlert &alert) { click(alert, 0); }));
    QVERIFY(answerAfter([](QuitAlert &alert) { click(alert, 1); }));
}

void QuitAlertTest::returnsOnEscapeAndOnClosing()
{
    QVERIFY(!answerAfter([](QuitAlert &alert) { QTest::keyClick(&alert, Qt::Key_Escape); }));
    QVERIFY(!answerAfter([](QuitAlert &alert) { alert.close(); }));
}

QTEST_MAIN(QuitAlertTest)
#include "QuitAlertTest.moc"
