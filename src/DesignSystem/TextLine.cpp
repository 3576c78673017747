// SPDX-License-Identifier: MIT
#include "TextLine.h"

#include "EmojiFormats.h"
#include "Metrics.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

double baseLine(const QFontMetricsF &metrics, double middle)
{
    return middle + metrics.capHeight() / 2;
}

/// As high as the font, or a little higher where centred capitals would push descenders out.
int height(const QFontMetricsF &metrics)
{
    constexpr double invisible = 0.25;
    const int descent = static_cast<int>(std::ceil(metrics.descent() - invisible));
    int height = static_cast<int>(std::ceil(metrics.height()));
    while (std::lround(baseLine(metrics, height / 2.0)) + descent > height)
        ++height;
    return height;
}

bool hasWideDot(const QFontMetrics &metrics)
{
    return metrics.horizontalAdvance(u'·') * 2 > metrics.height();
}

/// The spaces beside middle dots, as places in the text, from the last one on.
QList<qsizetype> gaps(const QString &text)
{
    const auto isSpace = [&text](qsizetype at) {
        return at >= 0 && at < text.size() && text[at] == u' ';
    };
    QList<qsizetype> gaps;
    for (qsizetype dot = text.lastIndexOf(u'·'); dot >= 0;
         dot = dot > 0 ? text.lastIndexOf(u'·', dot - 1) : -1) {
        if (!isSpace(dot + 1) || (dot > 0 && !isSpace(dot - 1)))
            continue;
        for (const qsizetype at : {dot + 1, dot - 1}) {
            if (at >= 0 && (gaps.isEmpty() || gaps.last() != at))
                gaps.append(at);
        }
    }
    return gaps;
}

/// In fonts of East Asia the middle dot is as wide as an ideograph and brings its own space along.
/// Places in the text move along with it.
QString withoutGaps(QString text, const QFontMetrics &metrics, QList<TextRange> *places = nullptr)
{
    if (!text.contains(u'·') || !hasWideDot(metrics))
        return text;
    for (const qsizetype gap : gaps(text)) {
        text.remove(gap, 1);
        if (!places)
            continue;
        for (TextRange &place : *places) {
            if (gap < place.start)
                --place.start;
            else if (gap < place.end())
                --place.length;
        }
    }
    return text;
}

/// One line in its own direction, with its base line at the origin.
class Line final {
public:
    Line(const QString &text, const QFont &font, QPaintDevice *device)
        : m_layout(text, font, device)
    {
        QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
        option.setWrapMode(QTextOption::NoWrap);
        option.setTextDirection(Qt::LayoutDirectionAuto);
        option.setFlags(QTextOption::IncludeTrailingSpaces);
        m_layout.setTextOption(option);
        m_layout.setFormats(emojiFormats(text, font));
        m_layout.beginLayout();
        m_line = m_layout.createLine();
        if (m_line.isValid()) {
            constexpr double endless = 1'000'000;
            m_line.setLineWidth(endless);
            m_line.setPosition({0, -m_line.ascent()});
            m_width = m_line.naturalTextWidth();
        }
        m_layout.endLayout();
    }

    [[nodiscard]] double width() const { return m_width; }

    void draw(QPainter &painter, QPointF at) const { m_layout.draw(&painter, at); }

    /// Where parts of the text stand, from the origin on: in a line of two directions one part may
    /// stand in several places. What lies side by side is one.
    [[nodiscard]] QPainterPath shape(const QList<TextRange> &parts, double top, double height) const
    {
        QList<std::pair<double, double>> spans;
        for (const TextRange &part : parts) {
            for (const QGlyphRun &run :
                 m_line.glyphRuns(static_cast<int>(part.start), static_cast<int>(part.length))) {
                const QRectF rect = run.boundingRect();
                spans.append({rect.left(), rect.right()});
            }
        }
        std::ranges::sort(spans);
        QPainterPath shape;
        for (qsizetype i = 0; i < spans.size();) {
            auto [left, right] = spans[i];
            constexpr double touching = 0.5;
            for (++i; i < spans.size() && spans[i].first <= right + touching; ++i)
                right = std::max(right, spans[i].second);
            shape.addRoundedRect({left, top, right - left, height}, Metrics::matchRadius,
                                 Metrics::matchRadius);
        }
        return shape;
    }

    /// A place not far before the given one at which no character is cut.
    [[nodiscard]] int characterBefore(int place) const
    {
        return m_layout.previousCursorPosition(place);
    }

private:
    QTextLayout m_layout;
    QTextLine m_line;
    double m_width = 0;
};

/// How much of the beginning of the text fits into the width: all of it, unless there is more than
/// it, or as much as stands before an ellipsis.
qsizetype fitting(const QString &text, bool isAll, const QFont &font, QPaintDevice *device,
                  double width)
{
    const Line whole(text, font, device);
    if (isAll && whole.width() <= width)
        return text.size();
    const auto cut = [&](int length) { return text.left(length) + QChar(u'…'); };
    int fits = 0;
    int tooLong = static_cast<int>(text.size());
    while (fits < tooLong) {
        const int middle = whole.characterBefore((fits + tooLong + 1) / 2 + 1);
        if (middle <= fits)
            break;
        if (Line(cut(middle), font, device).width() <= width)
            fits = middle;
        else
            tooLong = middle - 1;
    }
    return fits;
}

void paintLine(QPainter &painter, const QRectF &rect, const Line &line, bool isRightToLeft,
               Qt::Alignment alignment, const TextLine::Marks &marks = {})
{
    const Qt::LayoutDirection direction =
        isRightToLeft ? Qt::RightToLeft : painter.layoutDirection();
    const Qt::Alignment visual = QStyle::visualAlignment(direction, alignment);
    const double free = rect.width() - line.width();
    double left = rect.left();
    if (visual & Qt::AlignRight)
        left += free;
    else if (visual & Qt::AlignHCenter)
        left += free / 2;
    if (!marks.places.isEmpty())
        painter.fillPath(line.shape(marks.places, rect.top(), rect.height()).translated(left, 0),
                         marks.color);
    const QFontMetricsF metrics(painter.font(), painter.device());
    line.draw(painter, {left, baseLine(metrics, rect.center().y())});
}

} // namespace

QSize TextLine::size(const QFontMetrics &metrics, const QString &text)
{
    return {metrics.horizontalAdvance(withoutGaps(text, metrics)), height(QFontMetricsF(metrics))};
}

void TextLine::paint(QPainter &painter, const QRectF &rect, const QString &text,
                     Qt::Alignment alignment)
{
    const QString shown = withoutGaps(text, painter.fontMetrics());
    paintLine(painter, rect, Line(shown, painter.font(), painter.device()), shown.isRightToLeft(),
              alignment);
}

void TextLine::paintElided(QPainter &painter, const QRectF &rect, const QString &text,
                           const Marks &marks)
{
    // Nobody sees more of a line than this; a title may be as long as a book.
    constexpr qsizetype longest = 1000;
    Marks shownMarks = marks;
    const QString seen = withoutGaps(text.left(longest), painter.fontMetrics(), &shownMarks.places);
    const bool isAll = text.size() <= longest;
    const qsizetype fits = fitting(seen, isAll, painter.font(), painter.device(), rect.width());
    const QString shown = isAll && fits == seen.size() ? seen : seen.left(fits) + QChar(u'…');
    for (TextRange &place : shownMarks.places)
        place.length = std::clamp<qsizetype>(fits - place.start, 0, place.length);
    paintLine(painter, rect, Line(shown, painter.font(), painter.device()), shown.isRightToLeft(),
              Qt::AlignLeading, shownMarks);
}
