// SPDX-License-Identifier: MIT
#include "TextLabel.h"
#include "Pixels.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class TextLabelTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void followsThePaletteInItsTone();
    void isAsHighInChineseAsInEnglish();
    void centresItsCapitals();
    void cutsNothingOffItsLetters();
    void showsMarkupAndAmpersandsAsTheyAre();
    void wrapsWhenItMay();
    void breaksAWordThatIsLongerThanALine();
    void takesItsFontForTheLocaleAbove();
};

void TextLabelTest::followsThePaletteInItsTone()
{
    QWidget tree;
    tree.setPalette(NoteTheme::palette(ColorScheme::light));
    TextLabel label(TextStyles::subtitle, &tree);

    QCOMPARE(label.palette().color(label.foregroundRole()),
             NoteTheme::color(NoteTheme::palette(ColorScheme::light), Tone::secondary));
    tree.setPalette(NoteTheme::palette(ColorScheme::dark));
    QCOMPARE(label.palette().color(label.foregroundRole()),
             NoteTheme::color(NoteTheme::palette(ColorScheme::dark), Tone::secondary));
}

void TextLabelTest::isAsHighInChineseAsInEnglish()
{
    const TextLabel english(TextStyles::screenTitle, u"What’s on your mind?"_s);
    const TextLabel chinese(TextStyles::screenTitle, u"在想什么？"_s);

    QCOMPARE(chinese.sizeHint().height(), english.sizeHint().height());
}

void TextLabelTest::centresItsCapitals()
{
    TextLabel label(TextStyles::screenTitle, u"H"_s);
    for (const int height : {32, 47, 60}) {
        label.resize(60, height);
        const QRect ink = Pixels::inkBounds(Pixels::draw(label));
        QVERIFY(std::abs(ink.top() - (height - 1 - ink.bottom())) <= 2);
    }
}

void TextLabelTest::cutsNothingOffItsLetters()
{
    for (const TextStyle &style :
         {TextStyles::screenTitle, TextStyles::rowTitle, TextStyles::subtitle,
          TextStyles::captureDate, TextStyles::status, TextStyles::productTitle}) {
        TextLabel label(style, u"Hdgjpqy"_s);
        label.resize(label.sizeHint());
        const int ownHeight = Pixels::inkBounds(Pixels::draw(label)).height();

        label.resize(label.width(), 2 * label.height());

        // With room on both sides no more of the letters shows.
        QCOMPARE(Pixels::inkBounds(Pixels::draw(label)).height(), ownHeight);
    }
}

void TextLabelTest::showsMarkupAndAmpersandsAsTheyAre()
{
    TextLabel label(TextStyles::subtitle, u"<b>Save</b> & close"_s);

    QCOMPARE(label.textFormat(), Qt::PlainText);
    QCOMPARE(label.sizeHint().width(),
             QFontMetrics(label.font()).horizontalAdvance(u"<b>Save</b> & close"_s));
}

void TextLabelTest::wrapsWhenItMay()
{
    TextLabel label(TextStyles::banner, u"Could not save. Your text is still in this window."_s);
    const int oneLine = label.sizeHint().height();

    label.setWraps(true);

    QVERIFY(label.hasHeightForWidth());
    QVERIFY(label.heightForWidth(150) > oneLine);
}

void TextLabelTest::breaksAWordThatIsLongerThanALine()
{
    TextLabel label(TextStyles::banner, u"/home/"_s + u"averylongname"_s.repeated(8));
    label.setWraps(true);
    QVERIFY(label.minimumSizeHint().width() <= 120);
    QVERIFY(label.heightForWidth(120) >= 5 * QFontMetrics(label.font()).height());

    label.resize(120, label.heightForWidth(120));
    const QRect ink = Pixels::inkBounds(Pixels::draw(label));

    QVERIFY(ink.width() > 60);
    QVERIFY(ink.right() < 120);
    QVERIFY(ink.bottom() > label.height() / 2);
}

void TextLabelTest::takesItsFontForTheLocaleAbove()
{
    QWidget tree;
    tree.setLocale(QLocale(QLocale::English));
    TextLabel label(TextStyles::subtitle, &tree);
    QCOMPARE(label.font(), TextStyles::subtitle.font(QLocale(QLocale::English)));

    tree.setLocale(QLocale(QLocale::Chinese));

    QCOMPARE(label.font().families(),
             TextStyles::subtitle.font(QLocale(QLocale::Chinese)).families());
}

QTEST_MAIN(TextLabelTest)
#include "TextLabelTest.moc"
