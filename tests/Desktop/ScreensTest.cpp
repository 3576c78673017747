// SPDX-License-Identifier: MIT
#include "Screens.h"

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The second screen stands to the right of the primary one, is lower and begins 100 further down.
constexpr auto twoScreens = R"({"synchronousWindowSystemEvents": true, "windowFrameMargins": false,
 "screens": [
  {"name": "left", "x": 0, "y": 0, "width": 1440, "height": 900, "logicalDpi": 96,
   "logicalBaseDpi": 96, "dpr": 1},
  {"name": "right", "x": 1440, "y": 100, "width": 1280, "height": 600, "logicalDpi": 96,
   "logicalBaseDpi": 96, "dpr": 1}]})";

} // namespace

class ScreensTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsTheScreensInThePlatformsOrder();
    void measuresFromTheBottomLeftOfThePrimaryScreen();
    void takesThePrimaryScreenForTheMainOne();
    void turnsRectanglesUpsideDownAndBack();
    void turnsPointsUpsideDown();
};

void ScreensTest::listsTheScreensInThePlatformsOrder()
{
    const DesktopScreens screens;

    QCOMPARE(screens.all().size(), 2);
    QCOMPARE(screens.all().at(0).frame, (Rect{0, 0, 1440, 900}));
}

void ScreensTest::measuresFromTheBottomLeftOfThePrimaryScreen()
{
    const DesktopScreens screens;

    QCOMPARE(screens.all().at(1).frame, (Rect{1440, 200, 1280, 600}));
    QCOMPARE(screens.all().at(1).visibleFrame, (Rect{1440, 200, 1280, 600}));
}

void ScreensTest::takesThePrimaryScreenForTheMainOne()
{
    const DesktopScreens screens;

    QVERIFY(screens.main().has_value());
    QCOMPARE(*screens.main(), screens.all().at(0));
}

void ScreensTest::turnsRectanglesUpsideDownAndBack()
{
    const DesktopScreens screens;
    const QRect atTopRight(1364, 12, 64, 64);

    QCOMPARE(screens.fromQt(atTopRight), (Rect{1364, 824, 64, 64}));
    QCOMPARE(screens.toQt({1364, 824, 64, 64}), atTopRight);
}

void ScreensTest::turnsPointsUpsideDown()
{
    const DesktopScreens screens;

    QCOMPARE(screens.fromQt(QPointF(10.5, 890.25)), (Point{10.5, 9.75}));
}

int main(int argc, char *argv[])
{
    const QTemporaryDir folder;
    QFile configuration(folder.filePath(u"screens.json"_s));
    if (!configuration.open(QIODevice::WriteOnly) || configuration.write(twoScreens) < 0)
        return 1;
    configuration.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + configuration.fileName().toUtf8());

    const QGuiApplication application(argc, argv);
    ScreensTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ScreensTest.moc"
