#include "richtext/RichTextLayout.h"

#include <QGlyphRun>
#include <QPainter>
#include <QTextLine>

#include <algorithm>
#include <cmath>

namespace {
Qt::Alignment qtAlignment(std::optional<TextAlignment> alignment)
{
    switch (alignment.value_or(TextAlignment::Natural)) {
    case TextAlignment::Center: return Qt::AlignHCenter;
    case TextAlignment::Right: return Qt::AlignRight;
    case TextAlignment::Justified: return Qt::AlignJustify;
    case TextAlignment::Left: return Qt::AlignLeft;
    case TextAlignment::Natural: break;
    }
    return Qt::AlignLeft | Qt::AlignAbsolute;
}

constexpr QChar ellipsis(0x2026);
constexpr int maxParagraphLength = 4000;
}

RichTextLayout::RichTextLayout() = default;
RichTextLayout::~RichTextLayout() = default;

void RichTextLayout::setText(const AttributedString &text)
{
    m_text = text;
    m_dirty = true;
}

void RichTextLayout::setFallbackFont(const QFont &font)
{
    m_fallbackFont = font;
    m_dirty = true;
}

void RichTextLayout::setFallbackColor(const QColor &color)
{
    m_fallbackColor = color;
    m_dirty = true;
}

void RichTextLayout::setMaximumLineCount(int lines)
{
    m_maximumLineCount = std::max(0, lines);
}

QFont RichTextLayout::qfont(const RunFont &font)
{
    QFont result(font.face.family);
    result.setWeight(QFont::Weight(std::clamp(font.face.weight, 100, 900)));
    result.setItalic(font.face.italic);
    // Sheet sizes are points of a phone screen, which are our logical pixels.
    result.setPixelSize(std::max(1, int(std::lround(font.size))));
    return result;
}

QColor RichTextLayout::qcolor(const Color &color)
{
    const auto unit = [](double v) { return std::clamp(v, 0.0, 1.0); };
    return QColor::fromRgbF(float(unit(color.red)), float(unit(color.green)), float(unit(color.blue)), float(unit(color.alpha)));
}

void RichTextLayout::buildParagraphs()
{
    m_paragraphs.clear();
    m_paragraphs.emplace_back();
    bool styled = false; // whether the current paragraph has taken its style from a run yet
    for (const TextRun &run : m_text.runs) {
        QTextCharFormat format;
        format.setFont(run.font ? qfont(*run.font) : m_fallbackFont);
        const QColor color = run.color ? qcolor(*run.color) : m_fallbackColor;
        const qreal offset = run.baselineOffset.value_or(0);
        const QStringList pieces = run.text.split(QLatin1Char('\n'));
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (i > 0) {
                m_paragraphs.emplace_back();
                styled = false;
            }
            Paragraph &paragraph = m_paragraphs.back();
            if (!styled) {
                // The paragraph's first character decides its alignment and spacing; an empty
                // paragraph keeps the font of the line feed that made it, for its height.
                paragraph.style = run.paragraph.value_or(ParagraphStyle{});
                paragraph.firstFont = format.font();
                styled = !pieces[i].isEmpty();
            }
            // Layout time grows quickly with unbroken text, and no label shows more than this.
            const int room = maxParagraphLength - int(paragraph.text.size());
            if (pieces[i].isEmpty() || room <= 0)
                continue;
            const QString piece = pieces[i].left(room);
            const int start = int(paragraph.text.size());
            paragraph.text += piece;
            paragraph.formats.append({start, int(piece.size()), format});
            paragraph.spans.append({start, int(piece.size()), color, offset});
        }
    }
    for (Paragraph &paragraph : m_paragraphs)
        paragraph.lineHeightMultiple = paragraph.style.lineHeightMultiple.value_or(1.0);
    m_dirty = false;
}

QSizeF RichTextLayout::layout(qreal width)
{
    if (m_dirty)
        buildParagraphs();
    m_truncated = false;
    qreal y = 0;
    int linesLeft = m_maximumLineCount > 0 ? m_maximumLineCount : std::numeric_limits<int>::max();
    qreal used = 0;
    for (size_t i = 0; i < m_paragraphs.size(); ++i) {
        Paragraph &paragraph = m_paragraphs[i];
        if (linesLeft == 0) {
            paragraph.layout.reset();
            m_truncated = true;
            continue;
        }
        layoutParagraph(paragraph, width, y, linesLeft);
        // Text left over after the last allowed line, in this paragraph or a later one.
        const bool cut = paragraph.layout->lineCount() > 0
            && paragraph.layout->lineAt(paragraph.layout->lineCount() - 1).textStart()
                       + paragraph.layout->lineAt(paragraph.layout->lineCount() - 1).textLength()
                   < paragraph.text.size();
        if (linesLeft == 0 && (cut || i + 1 < m_paragraphs.size())) {
            m_truncated = true;
            elideLastLine(paragraph, width);
        }
        for (int l = 0; l < paragraph.layout->lineCount(); ++l)
            used = std::max(used, paragraph.layout->lineAt(l).naturalTextWidth());
    }
    return QSizeF(width > 0 ? std::min(std::ceil(used), width) : std::ceil(used), std::ceil(y));
}

void RichTextLayout::layoutParagraph(Paragraph &paragraph, qreal width, qreal &y, int &linesLeft)
{
    const bool empty = paragraph.text.isEmpty();
    // An empty paragraph still takes a line, measured with a blank in its font.
    paragraph.elided.reset();
    paragraph.layout = std::make_unique<QTextLayout>(empty ? QStringLiteral(" ") : paragraph.text,
                                                     empty ? paragraph.firstFont : m_fallbackFont);
    paragraph.layout->setFormats(paragraph.formats);
    // Unbounded, a line is as wide as its text, so alignment has no room to act.
    QTextOption option(width > 0 ? qtAlignment(paragraph.style.alignment) : Qt::AlignLeft);
    option.setWrapMode(width > 0 ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    option.setUseDesignMetrics(true);
    paragraph.layout->setTextOption(option);
    paragraph.layout->beginLayout();
    while (linesLeft > 0) {
        QTextLine line = paragraph.layout->createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width > 0 ? width : 1e6);
        // A line-height multiple scales the line; the extra room goes above the glyphs.
        const qreal natural = line.height();
        const qreal height = natural * paragraph.lineHeightMultiple;
        line.setPosition(QPointF(0, y + (height - natural)));
        y += height;
        --linesLeft;
    }
    paragraph.layout->endLayout();
}

void RichTextLayout::elideLastLine(Paragraph &paragraph, qreal width)
{
    const QTextLine last = paragraph.layout->lineAt(paragraph.layout->lineCount() - 1);
    const int lineStart = last.textStart();
    // The ellipsis takes the format of the text it follows.
    const auto formatAt = [&](int position) {
        for (const auto &range : paragraph.formats)
            if (position >= range.start && position < range.start + range.length)
                return range.format;
        return QTextCharFormat();
    };
    // An empty paragraph is laid out as one blank that is not part of its text.
    const int lineEnd = std::min<int>(last.textStart() + last.textLength(), int(paragraph.text.size()));
    const QTextCharFormat tailFormat = formatAt(std::max(lineStart, lineEnd - 1));
    const QFontMetricsF metrics(tailFormat.font());
    const qreal room = width > 0 ? width : last.naturalTextWidth();
    int cut = last.xToCursor(std::max<qreal>(0, room - metrics.horizontalAdvance(ellipsis)), QTextLine::CursorOnCharacter);
    cut = std::clamp(cut, lineStart, lineEnd);
    while (cut > lineStart && paragraph.text.at(cut - 1).isSpace())
        --cut;

    // The kept part of the line, shifted to start at 0, then the ellipsis.
    QList<QTextLayout::FormatRange> formats;
    for (auto range : paragraph.formats) {
        const int from = std::max(range.start, lineStart);
        const int to = std::min(range.start + range.length, cut);
        if (from < to)
            formats.append({from - lineStart, to - from, range.format});
    }
    formats.append({cut - lineStart, 1, cut > lineStart ? formatAt(cut - 1) : tailFormat});
    paragraph.elidedSpans.clear();
    for (const Span &span : paragraph.spans) {
        const int from = std::max(span.start, lineStart);
        const int to = std::min(span.start + span.length, cut);
        if (from < to)
            paragraph.elidedSpans.append({from - lineStart, to - from, span.color, span.baselineOffset});
    }
    const Span tail = !paragraph.elidedSpans.isEmpty() ? paragraph.elidedSpans.last()
        : !paragraph.spans.isEmpty()                   ? paragraph.spans.first()
                                                       : Span{0, 0, m_fallbackColor, 0};
    paragraph.elidedSpans.append({cut - lineStart, 1, tail.color, tail.baselineOffset});

    paragraph.elided = std::make_unique<QTextLayout>(paragraph.text.mid(lineStart, cut - lineStart) + ellipsis, m_fallbackFont);
    paragraph.elided->setFormats(formats);
    QTextOption option = paragraph.layout->textOption();
    option.setWrapMode(QTextOption::NoWrap);
    paragraph.elided->setTextOption(option);
    paragraph.elided->beginLayout();
    QTextLine line = paragraph.elided->createLine();
    if (line.isValid()) {
        line.setLineWidth(room);
        line.setPosition(last.position());
    }
    paragraph.elided->endLayout();
}

QSizeF RichTextLayout::naturalSize()
{
    return layout(0);
}

void RichTextLayout::drawLines(QPainter *painter, const QTextLayout &layout, const QList<Span> &spans, int lineCount)
{
    for (int l = 0; l < lineCount; ++l) {
        const QTextLine line = layout.lineAt(l);
        const int lineEnd = line.textStart() + line.textLength();
        for (const Span &span : spans) {
            const int from = std::max(span.start, line.textStart());
            const int to = std::min(span.start + span.length, lineEnd);
            if (from >= to)
                continue;
            painter->setPen(span.color);
            for (const QGlyphRun &glyphs : line.glyphRuns(from, to - from))
                painter->drawGlyphRun(QPointF(0, -span.baselineOffset), glyphs);
        }
    }
}

void RichTextLayout::draw(QPainter *painter) const
{
    for (const Paragraph &paragraph : m_paragraphs) {
        if (!paragraph.layout)
            continue;
        if (paragraph.text.isEmpty()) {
            // An empty last line that was cut short still shows its ellipsis.
            if (paragraph.elided)
                drawLines(painter, *paragraph.elided, paragraph.elidedSpans, paragraph.elided->lineCount());
            continue;
        }
        const int lines = paragraph.layout->lineCount();
        drawLines(painter, *paragraph.layout, paragraph.spans, paragraph.elided ? lines - 1 : lines);
        if (paragraph.elided)
            drawLines(painter, *paragraph.elided, paragraph.elidedSpans, paragraph.elided->lineCount());
    }
}
