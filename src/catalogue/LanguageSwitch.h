#pragma once

#include <QString>

class Restaurants;

// The user's choice of interface language. Nothing happens when `code` is already current.
// Otherwise the catalogue switches first and the interface second: the screens redo their texts
// when the interface announces the change, and the names they read must already be in the new
// language by then.
void switchLanguage(Restaurants &restaurants, const QString &code);
