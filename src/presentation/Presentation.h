#pragma once

#include <QColor>
#include <QString>

// How a screen is presented over another: the edge it comes in from, how far it reaches, and
// the colour that dims what lies beneath. Each sheet names its own; the view does the motion.
struct Presentation {
    enum class Edge { Bottom, Top, Right };

    Edge edge = Edge::Bottom;
    qreal extent = 0;                     // height from the top or bottom, width from the right; 0: all of it
    QColor dimming = QColor(0, 0, 0, 102); // black at 40%
    int duration = 250;                   // ms

    // A sheet rising from the bottom over black at 40% (`height` 0: the whole screen).
    static Presentation bottomSheet(qreal height = 0) { return {Edge::Bottom, height, QColor(0, 0, 0, 102), 250}; }
    // A screen dropping from the top, as the province picker does.
    static Presentation fromTop() { return {Edge::Top, 0, QColor(0, 0, 0, 102), 400}; }
    // A panel sliding in from the right with its own width, as the filters do.
    static Presentation fromRight(qreal width, const QColor &dimming) { return {Edge::Right, width, dimming, 300}; }

    QString edgeName() const
    {
        return edge == Edge::Top ? QStringLiteral("top") : edge == Edge::Right ? QStringLiteral("right") : QStringLiteral("bottom");
    }
};
