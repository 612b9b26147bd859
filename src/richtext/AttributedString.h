#pragma once

#include "richtext/Color.h"
#include "richtext/FontRegistry.h"
#include "richtext/StyleSpec.h"

#include <QList>
#include <QMetaType>
#include <QString>

#include <optional>

// The paragraph attributes of a run; present only when the style set one of them.
struct ParagraphStyle {
    std::optional<TextAlignment> alignment;
    std::optional<double> lineHeightMultiple;
    bool operator==(const ParagraphStyle &other) const = default;
};

struct RunFont {
    QString name;
    FontFace face;
    double size = 0;
    bool operator==(const RunFont &other) const = default;
};

// A stretch of text with its resolved attributes. An attribute that is absent is not set at all,
// as the drawing side must tell "no font" from "the default font".
struct TextRun {
    QString text;
    std::optional<RunFont> font;
    std::optional<Color> color;
    std::optional<ParagraphStyle> paragraph;
    std::optional<double> baselineOffset;
    bool operator==(const TextRun &other) const = default;
};

// The result of rendering markup: runs in order.
struct AttributedString {
    QList<TextRun> runs;

    QString string() const;
    bool isEmpty() const { return runs.isEmpty(); }
    bool operator==(const AttributedString &other) const = default;
};

Q_DECLARE_METATYPE(AttributedString)
