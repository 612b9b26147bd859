#include "richtext/StringParser.h"

#include "richtext/FontRegistry.h"
#include "richtext/RichString.h"

#include <QXmlStreamReader>

StringParser::StringParser(const QString &markup, const RichString &sheet)
    : m_markup(markup.toUtf8())
    , m_sheet(sheet)
{
    StyleSpec base;
    base.fontName = FontRegistry::systemFontName();
    base.fontSize = FontRegistry::systemFontSize;
    m_styleStack.append(base);
}

void StringParser::parse()
{
    QXmlStreamReader reader(m_markup);
    // Tags are looked up exactly as written: "a:b" is the rule "a:b", prefix or not.
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            didStartElement(reader.qualifiedName());
            break;
        case QXmlStreamReader::Characters:
            foundCharacters(reader.text());
            break;
        case QXmlStreamReader::EndElement:
            didEndElement();
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return; // no entity beyond the predefined ones is ever expanded
        default:
            break;
        }
    }
    // A fault ends the loop with the open run unflushed, as designed: it is simply lost.
}

void StringParser::didStartElement(QStringView name)
{
    closeRange();
    const StyleSpec &parent = m_styleStack.last();
    const auto rule = m_sheet.styleMap().constFind(name.toString());
    // An unknown tag changes nothing but is still pushed, so starts and ends stay balanced.
    m_styleStack.append(rule == m_sheet.styleMap().constEnd() ? parent : rule->inheriting(parent));
}

void StringParser::foundCharacters(QStringView text)
{
    // Only text inside the root element counts; white space around it is not content.
    if (m_styleStack.size() > 1)
        m_currentText += text;
}

void StringParser::didEndElement()
{
    closeRange();
    if (m_styleStack.size() > 1)
        m_styleStack.removeLast();
}

void StringParser::closeRange()
{
    if (m_currentText.isEmpty())
        return;
    const StyleSpec &style = m_styleStack.last();
    TextRun run;
    run.text = m_currentText;
    // An unknown font gives no font attribute at all: no substitute, and no size either.
    if (const auto face = FontRegistry::shared().face(*style.fontName))
        run.font = RunFont{*style.fontName, *face, *style.fontSize};
    run.color = style.color;
    if (style.alignment || style.line_height)
        run.paragraph = ParagraphStyle{style.alignment, style.line_height};
    run.baselineOffset = style.baseline_offset;
    m_attributedString.runs.append(run);
    m_currentText.clear();
}
