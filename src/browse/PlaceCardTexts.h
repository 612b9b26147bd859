#pragma once

#include "richtext/RichString.h"

#include <QString>
#include <QVariant>

class Restaurants;
struct Brief;

// What a place's card shows in a list, the place list's and the offers list's alike: the
// cuisines line with its pin glyph, the out-of-service sign, the picture's address and the
// sentence a screen reader says for the card.
class PlaceCardTexts
{
public:
    PlaceCardTexts();

    QVariant cuisines(const Brief &brief) const;
    static QString warning(const Brief &brief);
    static QString spoken(const Brief &brief);
    // Empty for a place without a picture, so the card asks the provider for nothing.
    static QString picture(Restaurants &restaurants, int id);

private:
    RichString m_cell;
};
