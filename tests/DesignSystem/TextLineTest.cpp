// SPDX-License-Identifier: MIT
#include "TextLine.h"
#include "Pixels.h"
#include "TextStyle.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class TextLineTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void standsInTheDirectionOfItsText_data();
    void standsInTheDirectionOfItsText();
    void runsInTheDirectionOfItsText();
    void cutsWhatIsTooLong_data();
    void cutsWhatIsTooLong();
    void cutsNothingThatFits();
    void isQuickWithABook();
};

namespace {

constexpr QSize size(200, 24);

QImage draw(const QString &text, bool isElided = false)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(TextStyles::rowTitle.font());
    if (isElided)
        TextLine::paintElided(painter, QRectF({}, size), text);
    else
        TextLine::paint(painter, QRectF({}, size), text);
    return image;
}

} // namespace

void TextLineTest::standsInTheDirectionOfItsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isRight");
    QTest::newRow("Latin") << u"Milk"_s << false;
    QTest::newRow("Hebrew") << u"חלב"_s << true;
    QTest::newRow("Arabic with a number") << u"حليب 12"_s << true;
    QTest::newRow("Latin with Hebrew") << u"Milk חלב"_s << false;
}

void TextLineTest::standsInTheDirectionOfItsText()
{
    QFETCH(const QString, text);
    QFETCH(const bool, isRight);
    for (const bool isElided : {false, true}) {
        const QRect ink = Pixels::inkBounds(draw(text, isElided));
        QVERIFY(isRight ? ink.right() > size.width() - 8 && ink.left() > size.width() / 4
                        : ink.left() < 8);
    }
}

void TextLineTest::runsInTheDirectionOfItsText()
{
    // In a text from right to left what follows the word, as the full stop, stands left of it.
    const QRect withStop = Pixels::inkBounds(draw(u"חלב."_s));
    const QRect without = Pixels::inkBounds(draw(u"חלב"_s));

    QVERIFY(withStop.left() < without.left());
    QVERIFY(std::abs(without.right() - withStop.right()) <= 5 ||
            withStop.right() >= size.width() - 8);
}

void TextLineTest::cutsWhatIsTooLong_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Latin") << u"a quick brown fox jumps over the lazy dog and on"_s;
    QTest::newRow("Hebrew") << u"חלב ולחם וגבינה וביצים ועוד הרבה דברים מהשוק"_s;
    QTest::newRow("Chinese") << u"想到就记下来想到就记下来想到就记下来想到就记下来"_s;
    QTest::newRow("emoji")
        << u"👨‍👩‍👧‍👦👩🏻‍💻🇩🇪👨‍👩‍👧‍👦👩🏻‍💻🇩🇪👨‍👩‍👧‍👦👩🏻‍💻🇩🇪👨‍👩‍👧‍👦👩🏻‍💻🇩🇪"_s
               .repeated(3);
}

void TextLineTest::cutsWhatIsTooLong()
{
    QFETCH(const QString, text);

    const QImage image = draw(text, true);

    // Something of both halves is there, and nothing beyond: what was cut would reach the edges.
    const QRect ink = Pixels::inkBounds(image);
    QVERIFY(ink.width() > size.width() / 2);
    QVERIFY(image != draw(text));
}

void TextLineTest::cutsNothingThatFits()
{
    for (const QString &text : {u"Milk"_s, u"חלב"_s, u"👩🏻‍💻"_s, QString()})
        QCOMPARE(draw(text, true), draw(text));
}

void TextLineTest::isQuickWithABook()
{
    const QString book = u"a quick brown fox "_s.repeated(100'000);
    QCOMPARE(draw(book, true), draw(book.left(2000), true));
}

QTEST_MAIN(TextLineTest)
#include "TextLineTest.moc"
