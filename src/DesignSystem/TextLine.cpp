// SPDX-License-Identifier: MIT
#include "TextLine.h"

#include "EmojiFormats.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <cmath>

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

/// In fonts of East Asia the middle dot is as wide as an ideograph and brings its own space along.
QString withoutGaps(QString text, const QFontMetrics &metrics)
{
    const QChar dot(u'·');
    if (text.contains(dot) && metrics.horizontalAdvance(dot) * 2 > metrics.height()) {
        text.replace(u" · "_s, u"·"_s);
        if (text.startsWith(u"· "_s))
            text.remove(1, 1);
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

/// The longest beginning of the text that fits into the width with an ellipsis.
QString elided(const QString &text, const QFont &font, QPaintDevice *device, double width)
{
    // Nobody sees more of a line than this; a title may be as long as a book.
    constexpr qsizetype longest = 1000;
    const QString seen = text.size() > longest ? text.left(longest) : text;
    const Line whole(seen, font, device);
    if (seen.size() == text.size() && whole.width() <= width)
        return text;
    const auto cut = [&](int length) { return seen.left(length) + QChar(u'…'); };
    int fits = 0;
    int tooLong = static_cast<int>(seen.size());
    while (fits < tooLong) {
        const int middle = whole.characterBefore((fits + tooLong + 1) / 2 + 1);
        if (middle <= fits)
            break;
        if (Line(cut(middle), font, device).width() <= width)
            fits = middle;
        else
            tooLong = middle - 1;
    }
    return cut(fits);
}

void paintLine(QPainter &painter, const QRectF &rect, const Line &line, bool isRightToLeft,
               Qt::Alignment alignment)
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

void TextLine::paintElided(QPainter &painter, const QRectF &rect, const QString &text)
{
    const QString shown = elided(withoutGaps(text, painter.fontMetrics()), painter.font(),
                                 painter.device(), rect.width());
    paintLine(painter, rect, Line(shown, painter.font(), painter.device()), shown.isRightToLeft(),
              Qt::AlignLeading);
}
