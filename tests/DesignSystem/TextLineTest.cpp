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
    void marksPlacesBelowTheirCharacters_data();
    void marksPlacesBelowTheirCharacters();
    void marksAPartInEachPlaceWhereItStands();
    void marksWholeEmoji();
    void marksNothingOfWhatIsCut();
    void keepsTheFormsOfMarkedLetters();
};

namespace {

constexpr QSize size(200, 24);

constexpr QColor markColor(0, 0, 255);

/// The text cut to fit, without its ink: only the marks of the places are painted.
QImage drawMarks(const QString &text, const QList<TextRange> &places, int width = size.width())
{
    QImage image({width, size.height()}, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(TextStyles::rowTitle.font());
    painter.setPen(Qt::transparent);
    TextLine::paintElided(painter, image.rect(), text, {places, markColor});
    return image;
}

/// From where to where the marks go, from left to right, above all that emoji cover.
QList<std::pair<int, int>> spans(const QImage &image)
{
    QList<std::pair<int, int>> spans;
    bool wasMark = false;
    for (int x = 0; x < image.width(); ++x) {
        const QColor color = image.pixelColor(x, 2);
        const bool isMark = color.alpha() > 127 && color.blue() > 200 && color.red() < 50;
        if (isMark && !wasMark)
            spans.append({x, x});
        if (isMark)
            spans.last().second = x;
        wasMark = isMark;
    }
    return spans;
}

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

void TextLineTest::marksPlacesBelowTheirCharacters_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QString>("behind");
    QTest::newRow("Latin") << u"Some "_s << u"milk"_s << u" today"_s;
    QTest::newRow("at the beginning") << QString() << u"milk"_s << u" today"_s;
    QTest::newRow("at the end") << u"Some "_s << u"milk"_s << QString();
    QTest::newRow("Chinese") << u"周末给"_s << u"妈妈"_s << u"打电话"_s;
    QTest::newRow("Hebrew") << u"לקנות "_s << u"חלב"_s << u" היום"_s;
}

void TextLineTest::marksPlacesBelowTheirCharacters()
{
    QFETCH(const QString, before);
    QFETCH(const QString, marked);
    QFETCH(const QString, behind);

    const auto found = spans(drawMarks(before + marked + behind, {{before.size(), marked.size()}}));

    const QFontMetrics metrics(TextStyles::rowTitle.font());
    const int start = metrics.horizontalAdvance(before);
    const int end = metrics.horizontalAdvance(before + marked);
    QCOMPARE(found.size(), 1);
    const auto [left, right] = found.first();
    const bool isRightToLeft = marked.isRightToLeft();
    QVERIFY(std::abs(left - (isRightToLeft ? size.width() - end : start)) <= 2);
    QVERIFY(std::abs(right - (isRightToLeft ? size.width() - start : end)) <= 2);
}

void TextLineTest::marksAPartInEachPlaceWhereItStands()
{
    // The letters of the other direction are read from right to left, so that "b ח" stands at the
    // left and at the right of what is not marked.
    const auto found = spans(drawMarks(u"ab חלב"_s, {{1, 3}}));

    QCOMPARE(found.size(), 2);
    QVERIFY(found[0].first > 4);
    const int end = QFontMetrics(TextStyles::rowTitle.font()).horizontalAdvance(u"ab חלב"_s);
    QVERIFY(std::abs(found[1].second - end) <= 2);
}

void TextLineTest::marksWholeEmoji()
{
    const QString family = u"👨‍👩‍👧"_s;

    const auto found = spans(drawMarks(u"a"_s + family + u"b"_s, {{1, family.size()}}));

    QCOMPARE(found.size(), 1);
    const QFontMetrics metrics(TextStyles::rowTitle.font());
    QVERIFY(std::abs(found[0].first - metrics.horizontalAdvance(u'a')) <= 2);
    QVERIFY(found[0].second - found[0].first >= metrics.height() / 2);
}

void TextLineTest::marksNothingOfWhatIsCut()
{
    const QString text = u"milk and bread and butter and jam"_s;
    constexpr int width = 100;

    QCOMPARE(spans(drawMarks(text, {{text.size() - 3, 3}}, width)).size(), 0);
    const auto toTheCut = spans(drawMarks(text, {{5, text.size() - 5}}, width));

    QCOMPARE(toTheCut.size(), 1);
    const QFontMetrics metrics(TextStyles::rowTitle.font());
    QVERIFY(toTheCut[0].second <= width - metrics.horizontalAdvance(u'…'));
}

void TextLineTest::keepsTheFormsOfMarkedLetters()
{
    // Letters of Arabic take their forms from their neighbours.
    const QString text = u"الحليب"_s;
    const auto drawn = [&text](const QList<TextRange> &places) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setFont(TextStyles::rowTitle.font());
        TextLine::paintElided(painter, QRectF({}, size), text, {places, Qt::white});
        return image;
    };

    QCOMPARE(drawn({{2, 2}}), drawn({}));
}

QTEST_MAIN(TextLineTest)
#include "TextLineTest.moc"
