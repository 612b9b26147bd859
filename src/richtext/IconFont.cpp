#include "richtext/IconFont.h"

namespace IconFont {

std::span<const Glyph> all()
{
    static const Glyph glyphs[] = {
        {"myplacesFull", &myplacesFull},   {"notificationsFull", &notificationsFull},
        {"settingsFull", &settingsFull},   {"infoFull", &infoFull},
        {"browseFull", &browseFull},       {"mapFull", &mapFull},
        {"browseThin", &browseThin},       {"mapThin", &mapThin},
        {"myplacesThin", &myplacesThin},   {"notificationsThin", &notificationsThin},
        {"infoThin", &infoThin},           {"settingsThin", &settingsThin},
        {"drawer", &drawer},               {"back", &back},
        {"backPlain", &backPlain},         {"cardRight", &cardRight},
        {"chevronClosed", &chevronClosed}, {"chevronOpen", &chevronOpen},
        {"location", &location},           {"reserve", &reserve},
        {"callout", &callout},             {"camera", &camera},
        {"call", &call},                   {"callPlain", &callPlain},
        {"delete", &delete_},              {"favoriteOff", &favoriteOff},
        {"favoriteOn", &favoriteOn},       {"visitedOff", &visitedOff},
        {"visitedOn", &visitedOn},         {"toVisitOff", &toVisitOff},
        {"toVisitOn", &toVisitOn},         {"checkOn", &checkOn},
        {"checkOff", &checkOff},           {"warning", &warning},
        {"mapLocate", &mapLocate},         {"mapMark", &mapMark},
        {"share", &share},
    };
    return glyphs;
}

}
