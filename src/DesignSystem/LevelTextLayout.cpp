// SPDX-License-Identifier: MIT
#include "LevelTextLayout.h"

#include "EmojiFormats.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QTextFrame>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

/// Lines cost memory, and what was looked at long ago is quickly laid out anew.
constexpr std::size_t mostLaidOut = 2000;

/// A change of more paragraphs is laid out when it is looked at.
constexpr int mostLaidOutAtOnce = 16;

/// That are drawn as one on their letter.
constexpr int mostMarks = 64;

/// QTextLine has places in 64ths and cuts off what is finer; sums are to be those of such places.
double inUnits(double distance)
{
    constexpr double units = 64;
    return std::trunc(distance * units) / units;
}

/// Of a block that is in the list of those that are laid out. Goes with the block, or before.
class Listed final : public QTextBlockUserData {
public:
    Listed(std::shared_ptr<std::list<QTextBlock>> blocks, const QTextBlock &block)
        : m_blocks(std::move(blocks))
        , m_place(m_blocks->insert(m_blocks->end(), block))
    {
    }

    ~Listed() override { m_blocks->erase(m_place); }

    Q_DISABLE_COPY_MOVE(Listed)

    void putLast() { m_blocks->splice(m_blocks->end(), *m_blocks, m_place); }

private:
    const std::shared_ptr<std::list<QTextBlock>> m_blocks;
    const std::list<QTextBlock>::iterator m_place;
};

/// What is drawn by itself of marks that stand on one letter. For each mark the fonts' rules look
/// back at all before it: fifty thousand took seconds.
QList<QTextLayout::FormatRange> manyMarks(QStringView text)
{
    QList<QTextLayout::FormatRange> ranges;
    qsizetype marks = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        constexpr char16_t firstMark = 0x0300;
        marks = text[at].unicode() >= firstMark && text[at].isMark() ? marks + 1 : 0;
        if (marks > 0 && marks % mostMarks == 0)
            ranges.append({static_cast<int>(at + 1 - mostMarks), mostMarks, {}});
    }
    return ranges;
}

bool isLaidOut(const QTextBlock &block)
{
    return block.layout()->lineCount() > 0;
}

} // namespace

LevelTextLayout::LevelTextLayout(QTextDocument *document)
    : QAbstractTextDocumentLayout(document)
    , m_laidOut(std::make_shared<std::list<QTextBlock>>())
{
    document->setDocumentLayout(this);
}

void LevelTextLayout::setMeasures(double lineHeight, const QMarginsF &margins)
{
    m_lineHeight = lineHeight;
    m_margins = margins.toMargins();
    expectAll();
}

void LevelTextLayout::setVisible(double top, double height)
{
    m_visibleTop = top;
    m_visibleLines = static_cast<int>(std::ceil(height / m_lineHeight)) + 1;
    forgetSome();
    layOutAround(blockAt(top));
}

QRectF LevelTextLayout::blockBoundingRect(const QTextBlock &block) const
{
    if (!block.isValid())
        return {};
    auto *const self = const_cast<LevelTextLayout *>(this);
    if (!isLaidOut(block))
        self->layOutAround(block);
    const double top = topOf(block);
    block.layout()->setPosition(QPointF(m_margins.left(), top));
    return QRectF(m_margins.left(), top, lineWidth(), block.lineCount() * m_lineHeight);
}

QSizeF LevelTextLayout::documentSize() const
{
    return {m_settings.width,
            m_margins.top() + document()->lineCount() * m_lineHeight + m_margins.bottom()};
}

QRectF LevelTextLayout::frameBoundingRect(QTextFrame *) const
{
    return {QPointF(), documentSize()};
}

int LevelTextLayout::hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const
{
    const bool isExact = accuracy == Qt::ExactHit;
    if (point.y() < m_margins.top())
        return isExact ? -1 : 0;
    const QTextBlock block = blockAt(point.y());
    const QTextLayout &lines = *block.layout();
    const double y = point.y() - blockBoundingRect(block).top();
    const int last = document()->characterCount() - 1;
    const int number = static_cast<int>(y / m_lineHeight);
    if (number >= lines.lineCount())
        return isExact ? -1 : last + static_cast<int>(lines.preeditAreaText().size());
    const QTextLine line = lines.lineAt(std::max(0, number));
    const double x = point.x() - m_margins.left();
    if (isExact && !line.naturalTextRect().contains(QPointF(x, y)))
        return -1;
    const int position =
        block.position() + line.xToCursor(x, isExact ? QTextLine::CursorOnCharacter
                                                     : QTextLine::CursorBetweenCharacters);
    return std::min(position, last + static_cast<int>(lines.preeditAreaText().size()));
}

// -- Drawing -----------------------------------------------------------------------------------

void LevelTextLayout::draw(QPainter *painter, const PaintContext &context)
{
    const QRectF clip = context.clip.isValid() ? context.clip : QRectF(QPointF(), documentSize());
    // What ascends from its line or descends is seen in the line beside it.
    QTextBlock block = blockAt(clip.top() - m_lineHeight);
    while (block.isValid() && topOf(block) <= clip.bottom() + m_lineHeight) {
        layOut(block);
        drawBlock(*painter, context, clip, block);
        block = block.next();
    }
    announce();
}

void LevelTextLayout::drawBlock(QPainter &painter, const PaintContext &context, const QRectF &clip,
                                const QTextBlock &block) const
{
    QList<QTextLayout::FormatRange> selections;
    for (const Selection &selection : context.selections) {
        const int start = selection.cursor.selectionStart() - block.position();
        const int end = selection.cursor.selectionEnd() - block.position();
        if (start < block.length() && end > std::max(0, start))
            selections.append({start, end - start, selection.format});
    }

    // The painter's own places may be large, those of QTextLayout not.
    QTextLayout &lines = *block.layout();
    const double top = topOf(block);
    lines.setPosition(QPointF(m_margins.left(), top));
    const QPointF offset(0, -std::floor(top));
    const QRectF frame(m_margins.left(), clip.top(), lineWidth(), clip.height());
    painter.save();
    painter.translate(-offset);
    painter.setPen(context.palette.color(QPalette::Text));
    lines.draw(&painter, offset, selections, (clip & frame).translated(offset));

    // Below -1 it is a place in what an input method composes.
    const bool isComposing = context.cursorPosition < -1 && !lines.preeditAreaText().isEmpty();
    const int cursor = isComposing ? lines.preeditAreaPosition() - (context.cursorPosition + 2)
                                   : context.cursorPosition - block.position();
    if (isComposing || (cursor >= 0 && cursor < block.length())) {
        const QVariant width = property("cursorWidth");
        lines.drawCursor(&painter, offset, cursor, width.isValid() ? width.toInt() : 1);
    }
    painter.restore();
}

// -- Where things are ---------------------------------------------------------------------------

LevelTextLayout::Settings LevelTextLayout::settingsNow() const
{
    const QTextOption option = document()->defaultTextOption();
    return {document()->pageSize().width(), document()->defaultFont(), option.wrapMode(),
            option.tabStopDistance(),       option.alignment(),        option.flags()};
}

double LevelTextLayout::lineWidth() const
{
    return std::max(0.0, m_settings.width - m_margins.left() - m_margins.right());
}

double LevelTextLayout::topOf(const QTextBlock &block) const
{
    return m_margins.top() + block.firstLineNumber() * m_lineHeight;
}

QTextBlock LevelTextLayout::blockAt(double y) const
{
    const int lines = document()->lineCount();
    const double line = std::floor((y - m_margins.top()) / m_lineHeight);
    return document()->findBlockByLineNumber(
        static_cast<int>(std::clamp(line, 0.0, static_cast<double>(lines - 1))));
}

int LevelTextLayout::likelyLines(const QTextBlock &block) const
{
    return std::max(1, static_cast<int>(std::ceil((block.length() - 1) / m_charactersInLine)));
}

// -- Laying out --------------------------------------------------------------------------------

void LevelTextLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    if (m_isSettingFormats)
        return;
    m_revision = document()->revision();
    const bool areSettings = charsRemoved == 0 && charsAdded >= document()->characterCount();
    if (m_settings != settingsNow()) {
        expectAll();
        return;
    }
    if (areSettings)
        return;
    const QTextBlock first = document()->findBlock(from);
    QTextBlock last = document()->findBlock(from + charsAdded);
    if (!last.isValid())
        last = document()->lastBlock();
    const double shift = m_shift;
    const double visibleTop = m_visibleTop;
    expect(first, last);
    if (last.blockNumber() - first.blockNumber() < mostLaidOutAtOnce) {
        for (QTextBlock block = first; block != last.next(); block = block.next())
            layOut(block);
    }
    // What was laid out meanwhile is part of the change.
    m_shift = shift;
    m_visibleTop = visibleTop;
    const double growth = (document()->lineCount() - m_linesTold) * m_lineHeight;
    if (topOf(last) + last.lineCount() * m_lineHeight - growth <= m_visibleTop) {
        m_visibleTop += growth;
        m_shift += growth;
    }
    const double top = topOf(first);
    const double bottom =
        document()->lineCount() == m_linesTold
            ? topOf(last) + last.lineCount() * m_lineHeight
            : std::max(documentSize().height(), m_visibleTop + m_visibleLines * m_lineHeight);
    announce();
    // Letters may reach out of their lines.
    Q_EMIT update(
        QRectF(0, top, m_settings.width, bottom - top).adjusted(0, -m_lineHeight, 0, m_lineHeight));
}

/// All lines have become others.
void LevelTextLayout::expectAll()
{
    m_settings = settingsNow();
    const double width = QFontMetricsF(m_settings.font).averageCharWidth();
    m_charactersInLine = lineWidth() > 0 ? std::max(1.0, lineWidth() / std::max(1.0, width))
                                         : std::numeric_limits<double>::infinity();
    m_linesTold = 0;
    expect(document()->begin(), document()->lastBlock());
    announce();
    Q_EMIT update();
}

/// From now on these have the lines that are likely.
void LevelTextLayout::expect(const QTextBlock &first, const QTextBlock &last)
{
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        block.clearLayout();
        const int lines = likelyLines(block);
        if (block.lineCount() != lines)
            block.setLineCount(lines);
        if (block == last)
            break;
    }
}

/// A page to either side, since whoever asks for one paragraph is about to show it.
void LevelTextLayout::layOutAround(const QTextBlock &block)
{
    layOut(block);
    int lines = 0;
    for (QTextBlock next = block.next(); next.isValid() && lines < 2 * m_visibleLines;
         next = next.next()) {
        layOut(next);
        lines += next.lineCount();
    }
    lines = 0;
    for (QTextBlock before = block.previous(); before.isValid() && lines < m_visibleLines;
         before = before.previous()) {
        layOut(before);
        lines += before.lineCount();
    }
    announce();
}

void LevelTextLayout::layOut(const QTextBlock &block)
{
    if (isLaidOut(block) || lineWidth() <= 0)
        return;
    setFormats(block);
    QTextLayout &lines = *block.layout();
    QTextOption option = document()->defaultTextOption();
    option.setTextDirection(block.textDirection());
    option.setAlignment(QStyle::visualAlignment(block.textDirection(), option.alignment()));
    lines.setTextOption(option);
    const double baseLine = inUnits(m_lineHeight * 4 / 5);
    // Where the caret is, and a key later what is drawn, is asked of the same glyphs.
    lines.setCacheEnabled(true);
    lines.beginLayout();
    int count = 0;
    for (QTextLine line = lines.createLine(); line.isValid(); line = lines.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(lineWidth());
        const double aboveBaseLine = inUnits(line.ascent() + std::max(0.0, line.leading()));
        line.setPosition({0, count * m_lineHeight + baseLine - aboveBaseLine});
        ++count;
    }
    lines.endLayout();
    lines.setPosition(QPointF(m_margins.left(), topOf(block)));
    list(block);
    setLines(block, std::max(1, count));
}

void LevelTextLayout::setLines(QTextBlock block, int count)
{
    const int before = block.lineCount();
    if (count == before)
        return;
    const double bottom = topOf(block) + before * m_lineHeight;
    block.setLineCount(count);
    if (bottom > m_visibleTop)
        return;
    const double distance = (count - before) * m_lineHeight;
    m_visibleTop += distance;
    m_shift += distance;
}

/// Those that the document keeps for itself are as the toolkit has put them: what an input method
/// composes is underlined there.
void LevelTextLayout::setFormats(const QTextBlock &block)
{
    QTextLayout &lines = *block.layout();
    const int composedAt = lines.preeditAreaPosition();
    const int composed = static_cast<int>(lines.preeditAreaText().size());
    const QList<QTextLayout::FormatRange> before = lines.formats();
    QList<QTextLayout::FormatRange> formats;
    for (const QTextLayout::FormatRange &range : before) {
        if (composed > 0 && range.start >= composedAt &&
            range.start + range.length <= composedAt + composed)
            formats.append(range);
    }
    for (QTextLayout::FormatRange range : emojiFormats(block.text(), m_settings.font)) {
        if (composed > 0 && range.start >= composedAt)
            range.start += composed;
        else if (composed > 0 && range.start + range.length > composedAt)
            range.length += composed;
        formats.append(range);
    }
    if (block.length() > mostMarks)
        formats += manyMarks(block.text());
    if (formats == before)
        return;
    // The document notes that as a change and would tell it with the next one. It is over here,
    // unless the document is being changed at the moment.
    m_isSettingFormats = true;
    lines.setFormats(formats);
    if (document()->revision() == m_revision)
        document()->markContentsDirty(block.position(), 0);
    m_isSettingFormats = false;
}

void LevelTextLayout::list(QTextBlock block)
{
    if (auto *const listed = static_cast<Listed *>(block.userData()))
        listed->putLast();
    else
        block.setUserData(new Listed(m_laidOut, block));
}

void LevelTextLayout::forgetSome()
{
    if (m_laidOut->size() <= mostLaidOut)
        return;
    while (m_laidOut->size() > mostLaidOut / 2) {
        QTextBlock block = m_laidOut->front();
        QTextLayout &lines = *block.layout();
        lines.setCacheEnabled(false);
        lines.beginLayout();
        lines.endLayout();
        block.setUserData(nullptr);
    }
}

/// A view limits its place to what there is: it grows first, and shrinks last.
void LevelTextLayout::announce()
{
    const double shift = std::exchange(m_shift, 0);
    const int lines = document()->lineCount();
    const bool isOther = std::exchange(m_linesTold, lines) != lines;
    if (shift < 0)
        Q_EMIT shifted(shift);
    if (isOther)
        Q_EMIT documentSizeChanged(documentSize());
    if (shift > 0)
        Q_EMIT shifted(shift);
}
