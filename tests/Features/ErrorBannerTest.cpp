// SPDX-License-Identifier: MIT
#include "ErrorBanner.h"
#include "Layouts.h"
#include "NoteTheme.h"
#include "Pixels.h"
#include "SymbolView.h"
#include "TextStyle.h"
#include "Views.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <numbers>

using namespace Qt::Literals::StringLiterals;

Q_DECLARE_METATYPE(ColorScheme)

class ErrorBannerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void liesWithinTheMarginsOfThePanel();
    void isARowOfSymbolMessageAndButton();
    void scrollsALongMessage();
    void isFilledWithSevenPerCentOfRed_data();
    void isFilledWithSevenPerCentOfRed();
    void hasCornersOfRadiusTwelve();
    void isRedThroughout_data();
    void isRedThroughout();

private:
    std::unique_ptr<ErrorBanner> m_banner;
};

namespace {

/// The frame is the banner without its margins: 26 to the left and right, 18 below.
constexpr QRect frame(26, 0, 372, 60);

void addSchemes()
{
    QTest::addColumn<ColorScheme>("scheme");

    QTest::newRow("light") << ColorScheme::light;
    QTest::newRow("dark") << ColorScheme::dark;
}

bool isRed(const QColor &color)
{
    return color.hsvHue() < 15 && color.hsvSaturation() > 100;
}

} // namespace

void ErrorBannerTest::init()
{
    m_banner = std::make_unique<ErrorBanner>();
    m_banner->setPalette(NoteTheme::palette(ColorScheme::light));
    m_banner->setRetryText(u"Retry"_s);
    m_banner->setMessage(u"The disk is full."_s);
    m_banner->setFixedSize(424, 60 + 18);
    m_banner->show();
}

void ErrorBannerTest::cleanup()
{
    m_banner.reset();
}

void ErrorBannerTest::liesWithinTheMarginsOfThePanel()
{
    QCOMPARE(Pixels::inkBounds(Pixels::draw(*m_banner)), frame);
}

void ErrorBannerTest::isARowOfSymbolMessageAndButton()
{
    const auto *symbol = m_banner->findChild<SymbolView *>();
    const QWidget *message = Views::find(*m_banner, "errorMessage");
    const QWidget *retry = Views::find(*m_banner, "retry");
    const auto place = [this](const QWidget *part) {
        return QRect(part->mapTo(m_banner.get(), QPoint(0, 0)), part->size());
    };

    QCOMPARE(symbol->symbol(), u"exclamationmark.triangle"_s);
    QCOMPARE(place(symbol).left(), frame.left() + 12);
    QCOMPARE(place(message).left(), place(symbol).right() + 1 + 8);
    QVERIFY(place(retry).left() >= place(message).right() + 1 + 8);
    QCOMPARE(place(retry).right(), frame.right() - 12);
    for (const QWidget *part : {static_cast<const QWidget *>(symbol), message, retry})
        QCOMPARE(place(part).top(), frame.top() + 12);
}

void ErrorBannerTest::scrollsALongMessage()
{
    QWidget panel;
    auto *const banner = m_banner.release();
    banner->setParent(&panel);
    banner->setMinimumSize(0, 0);
    banner->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    column(&panel, {banner, filling(new QWidget)});
    panel.resize(424, 400);
    const QString path = u"/home/user/"_s + u"very long folder "_s.repeated(30);

    banner->setMessage(path);
    QVERIFY(Views::show(panel));

    const auto *const text = banner->findChild<QScrollArea *>();
    const int line = QFontMetrics(TextStyles::banner.font()).height();
    QTRY_VERIFY(text->height() > 3 * line);
    QVERIFY(text->height() <= 6 * line);
    QVERIFY(text->verticalScrollBar()->maximum() > 0);
    QCOMPARE(text->focusPolicy(), Qt::TabFocus);
    QVERIFY(Views::find(*banner, "errorMessage")->height() > text->height());

    banner->setMessage(u"The disk is full."_s);
    QTRY_COMPARE(text->height(), line);
    QTRY_COMPARE(text->focusPolicy(), Qt::NoFocus);
}

void ErrorBannerTest::isFilledWithSevenPerCentOfRed_data()
{
    addSchemes();
}

void ErrorBannerTest::isFilledWithSevenPerCentOfRed()
{
    QFETCH(const ColorScheme, scheme);
    m_banner->setPalette(NoteTheme::palette(scheme));
    QColor fill = NoteTheme::color(m_banner->palette(), Tone::failure);
    fill.setAlphaF(0.07F);

    const QImage image = Pixels::draw(*m_banner, 1, Qt::white);

    for (const QPoint point : {QPoint(30, 30), QPoint(393, 30), QPoint(212, 3), QPoint(212, 57)})
        QVERIFY(Pixels::isAlike(image.pixelColor(point), Pixels::over(fill, Qt::white), 1));
}

void ErrorBannerTest::hasCornersOfRadiusTwelve()
{
    constexpr int ratio = 20;
    const QRect pixels(frame.topLeft() * ratio, frame.size() * ratio);

    const QImage image = Pixels::draw(*m_banner, ratio).copy(pixels);

    const double cut = 12 * (1 - 1 / std::numbers::sqrt2);
    for (const bool isRight : {false, true}) {
        for (const bool isBottom : {false, true}) {
            const double begins = Pixels::cornerCut(image, isRight, isBottom);
            QVERIFY2(std::abs(begins - cut) < 0.06, qPrintable(QString::number(begins)));
        }
    }
}

void ErrorBannerTest::isRedThroughout_data()
{
    addSchemes();
}

void ErrorBannerTest::isRedThroughout()
{
    QFETCH(const ColorScheme, scheme);
    m_banner->setPalette(NoteTheme::palette(scheme));
    const QColor red = NoteTheme::color(m_banner->palette(), Tone::failure);
    QVERIFY(isRed(red));
    const QList<QWidget *> parts{m_banner->findChild<SymbolView *>(),
                                 Views::find(*m_banner, "errorMessage"),
                                 Views::find(*m_banner, "retry")};
    for (QWidget *part : parts) {
        const QImage image = Pixels::draw(*part, 4);
        bool isDrawn = false;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor color = image.pixelColor(x, y);
                // What is nearly transparent keeps no exact colour.
                if (color.alpha() > 200) {
                    QVERIFY(Pixels::isAlike(QColor(color.rgb()), red, 4));
                    isDrawn = true;
                }
            }
        }
        QVERIFY2(isDrawn, qPrintable(part->objectName()));
    }
}

QTEST_MAIN(ErrorBannerTest)

#include "ErrorBannerTest.moc"
