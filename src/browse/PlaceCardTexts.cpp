#include "browse/PlaceCardTexts.h"

#include "catalogue/Restaurants.h"
#include "richtext/IconFont.h"

PlaceCardTexts::PlaceCardTexts()
    : m_cell({QStringLiteral("i { font-name: Velmora-Icons; font-size: 16; }"), QStringLiteral("p { font-name: OpenSans; font-size: 13; }")})
{
}

QVariant PlaceCardTexts::cuisines(const Brief &brief) const
{
    return QVariant::fromValue(m_cell.render(
        QStringLiteral("<body><i>%1</i><p> <![CDATA[%2]]></p></body>").arg(IconFont::location, brief.cuisines.join(QStringLiteral(", ")))));
}

QString PlaceCardTexts::warning(const Brief &brief) { return brief.outOfService ? IconFont::warning : QString(); }

QString PlaceCardTexts::spoken(const Brief &brief)
{
    // The card's texts without its glyphs.
    QString spoken = qtTrId("a11y_place_row").arg(brief.name, brief.cuisines.join(QStringLiteral(", ")), brief.address);
    if (brief.outOfService)
        spoken += QStringLiteral(". ") + qtTrId("a11y_out_of_service");
    return spoken;
}

QString PlaceCardTexts::picture(Restaurants &restaurants, int id)
{
    return restaurants.profileImage(id).isEmpty() ? QString() : QStringLiteral("image://places/profile/%1").arg(id);
}
