#pragma once

#include <QMetaType>
#include <QString>

#include <optional>

// A colour as the style sheets describe it: four components, nominally 0..1. Components are not
// clamped; a sheet's "rgb(300, 0, 0)" keeps its 300/255, and the drawing side decides.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const Color &other) const = default;

    // `#rrggbb` or `#rrggbbaa` (either case); anything else is opaque black, silently.
    // This is the constructor of the app's global colours.
    static Color fromHtml(const QString &text);
    // The platform's named colours, by their case-sensitive names ("darkGray", "clear", ...).
    static std::optional<Color> named(const QString &name);
};

Q_DECLARE_METATYPE(Color)
