// SPDX-License-Identifier: MIT
#include "NoteRow.h"

#include "FocusRing.h"
#include "Metrics.h"
#include "NoteListModel.h"
#include "Symbol.h"
#include "TextLine.h"
#include "TextStyle.h"
#include "TintedFrame.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

int lineHeight(const TextStyle &style, const QLocale &locale)
{
    return QFontMetrics(style.font(locale)).height();
}

/// Takes a line's height from the top of the rectangle.
QRect takeLine(QRect &rest, const TextStyle &style, const QLocale &locale)
{
    QRect line = rest;
    line.setHeight(lineHeight(style, locale));
    rest.setTop(line.bottom() + 1 + Metrics::rowSpacing);
    return line;
}

void drawText(QPainter &painter, const QStyleOptionViewItem &option, const QRect &line,
              const TextStyle &style, const QString &text, const QVariant &matches = {})
{
    painter.setFont(style.font(option.locale));
    painter.setPen(NoteTheme::color(option.palette, style.tone));
    TextLine::paintElided(
        painter, QStyle::visualRect(option.direction, option.rect, line), text,
        {matches.value<QList<TextRange>>(), NoteTheme::matchColor(option.palette)});
}

} // namespace

QRect NoteRow::surface(const QRect &item)
{
    return item.adjusted(0, 0, 0, -Metrics::betweenRows);
}

int NoteRow::height(const QLocale &locale, bool hasExcerpt) const
{
    if (m_titleOnly == 0 || m_locale != locale) {
        m_locale = locale;
        m_titleOnly = Metrics::rowPadding.top() + lineHeight(TextStyles::rowTitle, m_locale) +
                      Metrics::rowSpacing + lineHeight(TextStyles::rowMeta, m_locale) +
                      Metrics::rowPadding.bottom() + Metrics::betweenRows;
        m_withExcerpt =
            m_titleOnly + lineHeight(TextStyles::rowExcerpt, m_locale) + Metrics::rowSpacing;
    }
    return hasExcerpt ? m_withExcerpt : m_titleOnly;
}

QSize NoteRow::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return {0, height(option.locale, index.data(NoteListModel::hasExcerptRole).toBool())};
}

void NoteRow::paint(QPainter *painter, const QStyleOptionViewItem &option,
                    const QModelIndex &index) const
{
    const QRect row = surface(option.rect);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    painter->save();
    TintedFrame::paint(*painter, row,
                       NoteTheme::color(option.palette, Tone::primary,
                                        isHovered ? Metrics::rowHoverFill : Metrics::rowFill),
                       Metrics::rowRadius);

    QRect rest = row.marginsRemoved(Metrics::rowPadding);
    drawText(*painter, option, takeLine(rest, TextStyles::rowTitle, option.locale),
             TextStyles::rowTitle, index.data(Qt::DisplayRole).toString(),
             index.data(NoteListModel::titleMatchesRole));
    if (index.data(NoteListModel::hasExcerptRole).toBool())
        drawText(*painter, option, takeLine(rest, TextStyles::rowExcerpt, option.locale),
                 TextStyles::rowExcerpt, index.data(NoteListModel::excerptRole).toString(),
                 index.data(NoteListModel::excerptMatchesRole));

    QRect meta = takeLine(rest, TextStyles::rowMeta, option.locale);
    const int arrowWidth = Symbol::size(TextStyles::rowMeta.pixelSize).width();
    const QRect arrow(meta.right() + 1 - arrowWidth, meta.top(), arrowWidth, meta.height());
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
