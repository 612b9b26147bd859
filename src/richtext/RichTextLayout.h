#pragma once

#include "richtext/AttributedString.h"

#include <QColor>
#include <QFont>
#include <QList>
#include <QSizeF>
#include <QTextLayout>

#include <memory>
#include <vector>

class QPainter;

// Lays out an attributed string as a label does: one QTextLayout per paragraph (a line feed
// starts one), wrapping at words, each paragraph aligned and spaced by the paragraph style of
// its first run, and the last visible line elided when a line limit cuts the text short.
// Runs without a font or colour take the label's.
class RichTextLayout
{
public:
    RichTextLayout();
    ~RichTextLayout();

    void setText(const AttributedString &text);
    void setFallbackFont(const QFont &font);
    void setFallbackColor(const QColor &color);
    // 0: as many lines as the text needs.
    void setMaximumLineCount(int lines);

    // Lays out for `width` (<= 0: unbounded) and answers the size used.
    QSizeF layout(qreal width);
    // The size with no width limit: the widest paragraph on as few lines as it takes.
    QSizeF naturalSize();
    bool isTruncated() const { return m_truncated; }
    void draw(QPainter *painter) const;

    static QFont qfont(const RunFont &font);
    static QColor qcolor(const Color &color);

private:
    struct Span {
        int start;
        int length;
        QColor color;
        qreal baselineOffset;
    };
    struct Paragraph {
        QString text;
        QList<QTextLayout::FormatRange> formats;
        QList<Span> spans;
        ParagraphStyle style;
        QFont firstFont;
        std::unique_ptr<QTextLayout> layout;
        qreal lineHeightMultiple = 1;
        // When a line limit cuts the text: the shortened last line with its ellipsis, drawn
        // in place of the layout's last line.
        std::unique_ptr<QTextLayout> elided;
        QList<Span> elidedSpans;
    };
    static void drawLines(QPainter *painter, const QTextLayout &layout, const QList<Span> &spans, int lineCount);

    void buildParagraphs();
    void layoutParagraph(Paragraph &paragraph, qreal width, qreal &y, int &linesLeft);
    void elideLastLine(Paragraph &paragraph, qreal width);

    AttributedString m_text;
    QFont m_fallbackFont;
    QColor m_fallbackColor = Qt::black;
    int m_maximumLineCount = 0;
    std::vector<Paragraph> m_paragraphs;
    bool m_dirty = true;
    bool m_truncated = false;
};
