// SPDX-License-Identifier: MIT
#include "NoteRow.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "NoteListModel.h"
#include "Symbol.h"
#include "TextStyle.h"
#include "TintedFrame.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

int lineHeight(const TextStyle &style)
{
    return QFontMetrics(style.font()).height();
}

int heightOf(bool hasExcerpt)
{
    constexpr QMargins padding = Metrics::rowPadding;
    int height = padding.top() + lineHeight(TextStyles::rowTitle) + Metrics::rowSpacing +
                 lineHeight(TextStyles::rowMeta) + padding.bottom() + Metrics::betweenRows;
    if (hasExcerpt)
        height += lineHeight(TextStyles::rowExcerpt) + Metrics::rowSpacing;
    return height;
}

/// Takes a line's height from the top of the rectangle.
QRect takeLine(QRect &rest, const TextStyle &style)
{
    QRect line = rest;
    line.setHeight(lineHeight(style));
    rest.setTop(line.bottom() + 1 + Metrics::rowSpacing);
    return line;
}

void drawText(QPainter &painter, const QStyleOptionViewItem &option, const QRect &line,
              const TextStyle &style, const QString &text)
{
    const QFont font = style.font();
    painter.setFont(font);
    painter.setPen(NoteTheme::color(option.palette, style.tone));
    painter.drawText(QStyle::visualRect(option.direction, option.rect, line),
                     Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     QFontMetrics(font).elidedText(text, Qt::ElideRight, line.width()));
}

} // namespace

QRect NoteRow::surface(const QRect &item)
{
    return item.adjusted(0, 0, 0, -Metrics::betweenRows);
}

QSize NoteRow::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    // Asked for every note of the list at once.
    static const QSize withExcerpt(0, heightOf(true));
    static const QSize titleOnly(0, heightOf(false));
    return index.data(NoteListModel::hasExcerptRole).toBool() ? withExcerpt : titleOnly;
}

void NoteRow::paint(QPainter *painter, const QStyleOptionViewItem &option,
                    const QModelIndex &index) const
{
    const QRect row = surface(option.rect);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    painter->save();
    TintedFrame::paint(
        *painter, row,
        NoteTheme::primary(option.palette, isHovered ? Metrics::rowHoverFill : Metrics::rowFill),
        Metrics::rowRadius);

    QRect rest = row.marginsRemoved(Metrics::rowPadding);
    drawText(*painter, option, takeLine(rest, TextStyles::rowTitle), TextStyles::rowTitle,
             index.data(Qt::DisplayRole).toString());
    if (index.data(NoteListModel::hasExcerptRole).toBool())
        drawText(*painter, option, takeLine(rest, TextStyles::rowExcerpt), TextStyles::rowExcerpt,
                 index.data(NoteListModel::excerptRole).toString());

    QRect meta = takeLine(rest, TextStyles::rowMeta);
    const int arrowExtent = Symbol::extent(TextStyles::rowMeta.pixelSize);
    QRect arrow(meta.right() + 1 - arrowExtent, meta.top(), arrowExtent, meta.height());
    meta.setRight(arrow.left() - Metrics::rowSpacing);
    drawText(*painter, option, meta, TextStyles::rowMeta,
             index.data(NoteListModel::metaRole).toString());
    painter->setOpacity(isHovered ? 1 : Metrics::rowArrowOpacity);
    Symbol::paint(*painter, QStyle::visualRect(option.direction, option.rect, arrow),
                  u"arrow.up.right"_s, TextStyles::rowMeta.pixelSize,
                  NoteTheme::color(option.palette, TextStyles::rowMeta.tone));
    painter->setOpacity(1);

    if (option.state.testFlag(QStyle::State_HasFocus))
        FocusRing::paint(*painter, option.widget, row, Metrics::rowRadius);
    painter->restore();
}
