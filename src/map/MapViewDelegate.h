#pragma once

#include <QString>

struct CoordinateRegion;

// What the map view tells the screen that shows it. The one shared view has one delegate at a
// time: the screen that borrowed it last.
class MapViewDelegate
{
public:
    virtual ~MapViewDelegate() = default;
    virtual void mapViewDidSelectAnnotation(int identifier) = 0;
    virtual void mapViewDidTapAtCoordinate(double latitude, double longitude) = 0;
    virtual void mapViewDidStartRegionChange() = 0;
    virtual void mapViewDidChangeToRegion(const CoordinateRegion &region) = 0;
    // The name a screen reader says for a pin.
    virtual QString mapViewTitleForAnnotation(int identifier) = 0;
};

// The callout's button, told to the screen that shows the map.
class MapCalloutDelegate
{
public:
    virtual ~MapCalloutDelegate() = default;
    virtual void calloutViewDidTapRightButton() = 0;
};
