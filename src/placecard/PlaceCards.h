#pragma once

class NavigationController;
class QObject;
class Restaurants;

// The one way to open a place's card, whoever opens it (the list, search, the discover feed,
// the offers, the map, a link): fills the card with the place's record and pushes it. False for
// a place the catalogue doesn't have.
bool showPlaceCard(NavigationController *navigation, Restaurants &restaurants, int id, QObject *parent, bool animated);

// The sheet of a place's phone numbers, from the card or from a list's swipe button.
bool showPhoneNumbers(NavigationController *navigation, Restaurants &restaurants, int id, QObject *parent);
