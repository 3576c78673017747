// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QMarginsF>
#include <QTextBlock>
#include <QTextOption>
#include <list>
#include <memory>

/// Lays out a document of plain paragraphs in lines of one height, and of these only what somebody
/// looks at: a key costs its paragraph, and opening a text costs a screenful, however long it is.
///
/// A paragraph that nobody has looked at counts with the number of lines that its length makes
/// likely. When it is laid out and has others, what is above the visible part grows or shrinks, and
/// shifted() says by how much, so that what is seen can stay where it is.
///
/// Positions are numbers of lines times their height, which the document sums up in its tree of
/// blocks; they have no limit that a text would reach, unlike those of the toolkit's own layout.
///
/// A character has the font that emojiFormats() gives it. Lives on the GUI thread.
class LevelTextLayout final : public QAbstractTextDocumentLayout {
    Q_OBJECT

public:
    /// Of the document from now on, which owns it: in the place of the layout that it had.
    explicit LevelTextLayout(QTextDocument *document);

    /// The base line is at four fifths of the height of a line. Margins are rounded to whole
    /// points.
    void setMeasures(double lineHeight, const QMarginsF &margins);

    /// Tells which part is seen. All of it, and as much above and below, is laid out then.
    void setVisible(double top, double height);

    void draw(QPainter *painter, const PaintContext &context) override;
    [[nodiscard]] int hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const override;
    [[nodiscard]] int pageCount() const override { return 1; }
    [[nodiscard]] QSizeF documentSize() const override;
    [[nodiscard]] QRectF frameBoundingRect(QTextFrame *frame) const override;
    [[nodiscard]] QRectF blockBoundingRect(const QTextBlock &block) const override;

Q_SIGNALS:
    /// What stands at the top of the visible part, and below it, is that much further down now.
    void shifted(double distance);

protected:
    void documentChanged(int from, int charsRemoved, int charsAdded) override;

private:
    /// What all lines depend on.
    struct Settings {
        double width = 0;
        QFont font;
        QTextOption::WrapMode wrapMode{};
        double tabStop = 0;
        Qt::Alignment alignment;
        QTextOption::Flags flags;

        friend bool operator==(const Settings &, const Settings &) = default;
    };

    [[nodiscard]] Settings settingsNow() const;
    [[nodiscard]] double lineWidth() const;
    [[nodiscard]] double topOf(const QTextBlock &block) const;
    [[nodiscard]] QTextBlock blockAt(double y) const;
    [[nodiscard]] int likelyLines(const QTextBlock &block) const;
    [[nodiscard]] QList<QTextLayout::FormatRange> formatsFor(const QTextBlock &block) const;

    void expectAll();
    void expect(const QTextBlock &first, const QTextBlock &last);
    void layOut(const QTextBlock &block);
    void layOutAround(const QTextBlock &block);
    void setFormats(const QTextBlock &block);
    void setLines(QTextBlock block, int count);
    void list(QTextBlock block);
    void forgetSome();
    void announce();
    void drawBlock(QPainter &painter, const PaintContext &context, const QRectF &clip,
                   const QTextBlock &block) const;

    double m_lineHeight = 1;
    QMargins m_margins;
    Settings m_settings;
    double m_charactersInLine = 1;

    /// How many there were when somebody was told last.
    int m_linesTold = 0;

    double m_visibleTop = 0;
    int m_visibleLines = 40;

    /// By how much the visible part has moved and nobody was told yet.
    double m_shift = 0;
    bool m_isSettingFormats = false;

    /// Of the document after the last change. It has a later one while it is being changed.
    int m_revision = 0;

    /// Blocks that are there and have lines, or had some, the latest last.
    std::shared_ptr<std::list<QTextBlock>> m_laidOut;
};
