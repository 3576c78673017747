// SPDX-License-Identifier: MIT
#include "LaunchOptions.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class LaunchOptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAnOrdinaryStartWithoutArguments();
    void hostsPreviewsOnlyForTheExactValue_data();
    void hostsPreviewsOnlyForTheExactValue();
    void hostsUnitTestsWhateverTheArguments();
    void findsQtTestInThisProcess();
    void fixesLanguageAndAppearanceForInterfaceTests();
    void takesTheOverridesInInterfaceTests();
    void passesOverTheOverridesOtherwise();
    void opensTheEditorInEveryMode();
    void opensTheListOfNotesInEveryMode();
    void isToldThatTheSessionStartsIt();
    void comparesWholeArgumentsOnly();
    void knowsThatTheBusStartedIt();
    void namesWhatItDoesNotKnow();

private:
    static LaunchOptions from(const QStringList &arguments)
    {
        return LaunchOptions::from(QStringList{u"quillmark"_s} + arguments, {}, false);
    }
};

void LaunchOptionsTest::isAnOrdinaryStartWithoutArguments()
{
    const LaunchOptions options = from({});

    QCOMPARE(options, LaunchOptions());
    QCOMPARE(options.mode, LaunchOptions::Mode::normal);
    QVERIFY(!options.language);
    QVERIFY(!options.appearance);
    QVERIFY(!options.showsEditor);
}

void LaunchOptionsTest::hostsPreviewsOnlyForTheExactValue_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("isHost");

    QTest::newRow("1") << u"1"_s << true;
    QTest::newRow("0") << u"0"_s << false;
    QTest::newRow("true") << u"true"_s << false;
    QTest::newRow("01") << u"01"_s << false;
    QTest::newRow("1 and a space") << u"1 "_s << false;
    QTest::newRow("empty") << u""_s << false;
}

void LaunchOptionsTest::hostsPreviewsOnlyForTheExactValue()
{
    QFETCH(const QString, value);
    QFETCH(const bool, isHost);
    QProcessEnvironment environment;
    environment.insert(u"XCODE_RUNNING_FOR_PREVIEWS"_s, value);

    const LaunchOptions options = LaunchOptions::from({u"quillmark"_s}, environment, false);

    QCOMPARE(options.mode, isHost ? LaunchOptions::Mode::hostOnly : LaunchOptions::Mode::normal);
}

void LaunchOptionsTest::hostsUnitTestsWhateverTheArguments()
{
    QCOMPARE(LaunchOptions::from({u"quillmark"_s, u"--ui-testing"_s}, {}, true).mode,
             LaunchOptions::Mode::hostOnly);
}

void LaunchOptionsTest::findsQtTestInThisProcess()
{
    QVERIFY(hostsUnitTests());
    QCOMPARE(LaunchOptions::ofThisProcess().mode, LaunchOptions::Mode::hostOnly);
}

void LaunchOptionsTest::fixesLanguageAndAppearanceForInterfaceTests()
{
    const LaunchOptions options = from({u"--ui-testing"_s});

    QCOMPARE(options.mode, LaunchOptions::Mode::interfaceTest);
    QCOMPARE(options.language, AppLanguage::english);
    QCOMPARE(options.appearance, AppAppearance::light);
}

void LaunchOptionsTest::takesTheOverridesInInterfaceTests()
{
    const LaunchOptions options =
        from({u"--appearance=dark"_s, u"--ui-testing"_s, u"--language=zh-Hans"_s});

    QCOMPARE(options.language, AppLanguage::chinese);
    QCOMPARE(options.appearance, AppAppearance::dark);
}

void LaunchOptionsTest::passesOverTheOverridesOtherwise()
{
    const LaunchOptions options = from({u"--language=zh-Hans"_s, u"--appearance=dark"_s});

    QCOMPARE(options, LaunchOptions());
}

void LaunchOptionsTest::opensTheEditorInEveryMode()
{
    QVERIFY(from({u"--show-editor"_s}).showsEditor);
    QVERIFY(from({u"--ui-testing"_s, u"--show-editor"_s}).showsEditor);
    QVERIFY(!from({u"--ui-testing"_s}).showsEditor);
}

void LaunchOptionsTest::opensTheListOfNotesInEveryMode()
{
    QVERIFY(from({u"--show-notes"_s}).showsNotes);
    QVERIFY(!from({u"--show-notes"_s}).showsEditor);
    QVERIFY(from({u"--ui-testing"_s, u"--show-notes"_s}).showsNotes);
    QVERIFY(!from({u"--show-notes=now"_s}).showsNotes);
}

void LaunchOptionsTest::isToldThatTheSessionStartsIt()
{
    QVERIFY(from({u"--autostart"_s}).isAutostart);
    QVERIFY(from({u"--autostart"_s}).unknown.isEmpty());
    QVERIFY(!from({}).isAutostart);
}

void LaunchOptionsTest::comparesWholeArgumentsOnly()
{
    for (const QString &argument :
         {u"--ui-testing=1"_s, u"-ui-testing"_s, u"--UI-testing"_s, u"--show-editors"_s,
          u"--show-editor --ui-testing"_s, u"show-editor"_s}) {
        LaunchOptions expected;
        expected.unknown = {argument};
        QCOMPARE(from({argument}), expected);
    }

    const LaunchOptions options =
        from({u"--ui-testing"_s, u"--language=zh"_s, u"--appearance=darker"_s});
    QCOMPARE(options.language, AppLanguage::english);
    QCOMPARE(options.appearance, AppAppearance::light);
}

void LaunchOptionsTest::knowsThatTheBusStartedIt()
{
    QVERIFY(from({u"--started-by-bus"_s}).isStartedByBus);
    QVERIFY(!from({}).isStartedByBus);
}

void LaunchOptionsTest::namesWhatItDoesNotKnow()
{
    const LaunchOptions options =
        from({u"--dance"_s, u"--show-editor"_s, u"-session"_s, u"file.md"_s});

    QVERIFY(options.showsEditor);
    QCOMPARE(options.unknown, (QStringList{u"--dance"_s, u"file.md"_s}));
    QVERIFY(from({u"--ui-testing"_s, u"--language=zh-Hans"_s}).unknown.isEmpty());
}

QTEST_GUILESS_MAIN(LaunchOptionsTest)
#include "LaunchOptionsTest.moc"
