#pragma once

class NavigationController;
class QObject;
class Restaurants;

// Pushes a place's card on `navigation`, as every list that opens places does; false for a
// place the catalogue doesn't have.
bool showPlaceCard(NavigationController *navigation, Restaurants &restaurants, int id, QObject *parent, bool animated);
