#pragma once

#include "richtext/AttributedString.h"
#include "richtext/StyleSpec.h"

#include <QList>
#include <QString>

class RichString;

// Walks one markup document and builds its attributed string. Each open tag pushes its rule,
// inherited field by field from the enclosing tag; text takes the innermost style. Made, parsed
// once and dropped.
//
// Malformed markup stops the walk where it breaks: runs closed before stay, the open run is
// lost, and nothing is reported. Only the five predefined XML entities (and character
// references) are expanded; a document type declaration, which could define more, stops the
// walk like any other fault.
class StringParser
{
public:
    StringParser(const QString &markup, const RichString &sheet);

    void parse();
    const AttributedString &attributedString() const { return m_attributedString; }

    // Appends the open text as a run in the style of the innermost tag.
    void closeRange();

private:
    void didStartElement(QStringView name);
    void foundCharacters(QStringView text);
    void didEndElement();

    QByteArray m_markup;
    const RichString &m_sheet;
    AttributedString m_attributedString;
    QString m_currentText;
    QList<StyleSpec> m_styleStack;
};
