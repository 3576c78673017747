// SPDX-License-Identifier: MIT
#include "NoteRow.h"
#include "NoteListModel.h"
#include "NoteTheme.h"
#include "Pixels.h"
#include "TextStyle.h"

#include <QStandardItemModel>
#include <QStyleOptionViewItem>
#include <QTest>
#include <numbers>

using namespace Qt::Literals::StringLiterals;

class NoteRowTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isFilledFaintlyAndStrongerUnderThePointer_data();
    void isFilledFaintlyAndStrongerUnderThePointer();
    void hasCornersOfRadiusFifteenAndAGapBelow();
    void showsItsArrowInFullUnderThePointerAlone();
    void setsTitleExcerptAndDateOneBelowTheOther();
    void hasNoLineForAnEmptyExcerpt();
    void marksWhatTheSearchFound();
};

namespace {

constexpr int width = 150;

/// The drawing of one note, pointer over it or not.
class Row {
public:
    explicit Row(const QString &excerpt = u"bread"_s)
    {
        auto *item = new QStandardItem(u"Milk"_s);
        item->setData(excerpt, NoteListModel::excerptRole);
        item->setData(!excerpt.isEmpty(), NoteListModel::hasExcerptRole);
        item->setData(u"03/01, 8:15 AM"_s, NoteListModel::metaRole);
        m_model.appendRow(item);
        m_option.palette = NoteTheme::palette(ColorScheme::light);
        m_option.rect = QRect(0, 0, width, height());
    }

    void setMatches(const QList<TextRange> &inTitle, const QList<TextRange> &inExcerpt)
    {
        m_model.item(0)->setData(QVariant::fromValue(inTitle), NoteListModel::titleMatchesRole);
        m_model.item(0)->setData(QVariant::fromValue(inExcerpt), NoteListModel::excerptMatchesRole);
    }

    void setPointerIsOver(bool isOver) { m_option.state.setFlag(QStyle::State_MouseOver, isOver); }
    [[nodiscard]] const QPalette &palette() const { return m_option.palette; }

    /// With the gap below.
    [[nodiscard]] int height() const
    {
        return m_row.sizeHint(m_option, m_model.index(0, 0)).height();
    }

    /// In colours fine enough to tell 7 % from 7.5 %.
    [[nodiscard]] QImage draw(int ratio = 1) const
    {
        QImage image(m_option.rect.size() * ratio, QImage::Format_RGBA64_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        m_row.paint(&painter, m_option, m_model.index(0, 0));
        return image;
    }

    /// From and to which height something is drawn over the fill, for each line of text.
    [[nodiscard]] QList<std::pair<int, int>> lines() const
    {
        const QImage image = draw();
        const int fill = image.pixelColor(width / 2, 5).alpha();
        QList<std::pair<int, int>> lines;
        bool wasInk = false;
        for (int y = 0; y < image.height(); ++y) {
            bool isInk = false;
            for (int x = 0; x < width / 2; ++x)
                isInk |= image.pixelColor(x, y).alpha() > fill + 40;
            if (isInk && !wasInk)
                lines.append({y, y});
            if (isInk)
                lines.last().second = y;
            wasInk = isInk;
        }
        return lines;
    }

private:
    QStandardItemModel m_model;
    QStyleOptionViewItem m_option;
    NoteRow m_row;
};

/// The most opaque colour at the right end of the last line.
QColor arrowOf(const Row &row)
{
    constexpr int ratio = 16;
    const QImage image = row.draw(ratio);
    const QRect arrow(width - 15 - 12, row.height() - 8 - 15 - 14, 12, 14);
    QColor strongest = Qt::transparent;
    for (int y = arrow.top() * ratio; y < arrow.bottom() * ratio; ++y) {
        for (int x = arrow.left() * ratio; x < (arrow.right() + 1) * ratio; ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.alpha() > strongest.alpha())
                strongest = color;
        }
    }
    return strongest;
}

} // namespace

void NoteRowTest::isFilledFaintlyAndStrongerUnderThePointer_data()
{
    QTest::addColumn<bool>("isOver");
    QTest::addColumn<double>("opacity");

    QTest::newRow("pointer elsewhere") << false << 0.035;
    QTest::newRow("pointer over it") << true << 0.075;
}

void NoteRowTest::isFilledFaintlyAndStrongerUnderThePointer()
{
    QFETCH(const bool, isOver);
    QFETCH(const double, opacity);
    Row row;
    row.setPointerIsOver(isOver);

    const QImage image = row.draw();

    const QColor primary = NoteTheme::color(row.palette(), Tone::primary);
    for (const QPoint point : {QPoint(width / 2, 3), QPoint(0, 30), QPoint(width - 1, 30)}) {
        const QColor fill = image.pixelColor(point);
        QVERIFY2(std::abs(fill.alphaF() - opacity) < 0.0005,
                 qPrintable(QString::number(fill.alphaF())));
        QVERIFY(Pixels::isAlike(QColor(fill.rgb()), primary));
    }
}

void NoteRowTest::hasCornersOfRadiusFifteenAndAGapBelow()
{
    constexpr int ratio = 20;
    const Row row;

    const QImage image = row.draw(ratio);

    const QRect drawn = Pixels::inkBounds(image);
    QCOMPARE(drawn, QRect(0, 0, width * ratio, (row.height() - 8) * ratio));
    const double cut = 15 * (1 - 1 / std::numbers::sqrt2);
    for (const bool isRight : {false, true}) {
        for (const bool isBottom : {false, true})
            QVERIFY(std::abs(Pixels::cornerCut(image.copy(drawn), isRight, isBottom) - cut) < 0.06);
    }
}

void NoteRowTest::showsItsArrowInFullUnderThePointerAlone()
{
    Row row;
    const QColor faint = arrowOf(row);

    row.setPointerIsOver(true);
    const QColor full = arrowOf(row);

    QVERIFY(Pixels::isAlike(full, NoteTheme::color(row.palette(), Tone::secondary)));
    // 35 % over the row's own 3.5 %.
    QVERIFY(std::abs(faint.alphaF() - (0.35 + 0.65 * 0.035)) < 0.01);
}

void NoteRowTest::setsTitleExcerptAndDateOneBelowTheOther()
{
    const Row row;

    const auto lines = row.lines();

    QCOMPARE(lines.size(), 3);
    QVERIFY(lines[0].first >= 15);
    QVERIFY(lines[2].second < row.height() - 8 - 15);
}

void NoteRowTest::hasNoLineForAnEmptyExcerpt()
{
    const Row with(u"bread"_s);

    const Row without(QString{});

    QCOMPARE(without.lines().size(), 2);
    const int line = QFontMetrics(TextStyles::rowExcerpt.font()).height();
    QCOMPARE(without.height(), with.height() - line - 8);
    QCOMPARE(without.lines()[0], with.lines()[0]);
    QCOMPARE(without.height() - without.lines()[1].second, with.height() - with.lines()[2].second);
}

void NoteRowTest::marksWhatTheSearchFound()
{
    Row row(u"bread and butter"_s);
    const QColor mark = NoteTheme::matchColor(row.palette());
    const auto marked = [&row, &mark] {
        const QImage image = row.draw().convertToFormat(QImage::Format_ARGB32);
        QList<int> lines;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == mark && (lines.isEmpty() || lines.last() != y))
                    lines.append(y);
            }
        }
        return lines;
    };
    QCOMPARE(marked(), QList<int>());

    row.setMatches({{0, 4}}, {});
    const QList<int> title = marked();
    row.setMatches({}, {{10, 6}});
    const QList<int> excerpt = marked();

    QVERIFY(!title.isEmpty() && !excerpt.isEmpty());
    QVERIFY(title.first() >= 15 && title.last() < excerpt.first());
    QVERIFY(excerpt.last() < row.height() - 8 - 15);
}

QTEST_MAIN(NoteRowTest)

#include "NoteRowTest.moc"
