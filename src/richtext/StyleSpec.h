#pragma once

#include "richtext/Color.h"

#include <QString>

#include <optional>

// Paragraph alignment words of the sheets, with the platform's values.
enum class TextAlignment { Left = 0, Center = 1, Right = 2, Justified = 3, Natural = 4 };

// One rule of a style sheet. An absent field is filled from the enclosing tag when rendering.
struct StyleSpec {
    std::optional<QString> fontName;
    std::optional<double> fontSize;
    std::optional<Color> color;
    std::optional<TextAlignment> alignment;
    std::optional<double> line_height;     // a multiple of the natural line height
    std::optional<double> baseline_offset; // points, up is positive

    bool operator==(const StyleSpec &other) const = default;

    // This rule over `parent`: each field from the rule where it has one, else from the parent.
    StyleSpec inheriting(const StyleSpec &parent) const;
};
