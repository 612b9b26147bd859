#include "DemoGenerator.h"

#include "DemoGeography.h"
#include "DemoPictures.h"
#include "DemoTowns.h"
#include "catalogue/CatalogueDates.h"

#include <QSet>

#include <random>

namespace {
// An hour of the day as an English reader writes it: "12 pm" is noon, "12 am" midnight.
QString englishHour(int hour)
{
    const int onClock = hour % 12 == 0 ? 12 : hour % 12;
    return QStringLiteral("%1 %2").arg(onClock).arg(hour % 24 < 12 ? QStringLiteral("am") : QStringLiteral("pm"));
}


struct Pair {
    const char *es;
    const char *en;
};

// Names of the six name tables, Spanish and English. Price ranks are numbered from 2.
const Pair priceRanks[] = {{"Económico", "Budget"}, {"Moderado", "Moderate"}, {"Intermedio", "Mid-range"},
                           {"Caro", "Expensive"}, {"De lujo", "Luxury"}};
const Pair cuisines[] = {{"Criolla", "Creole"},       {"Italiana", "Italian"},     {"Mariscos", "Seafood"},
                         {"Española", "Spanish"},     {"Internacional", "International"}, {"China", "Chinese"},
                         {"Vegetariana", "Vegetarian"}, {"Parrillada", "Grill"},  {"Pizzería", "Pizza"},
                         {"Cafetería", "Café"},       {"Repostería", "Desserts"}, {"Fusión", "Fusion"}};
const Pair groups[] = {{"Palmares", "Palmares"}, {"Cadena Sabor", "Sabor chain"}, {"Independiente", "Independent"}};
const Pair serviceTypes[] = {{"Entrega a domicilio", "Delivery"}, {"Reservas", "Reservations"}, {"Para llevar", "Takeaway"},
                             {"Música en vivo", "Live music"}, {"Desayunos", "Breakfast"}};
const Pair placeOptions[] = {{"Terraza", "Terrace"}, {"Aire acondicionado", "Air conditioning"}, {"Vista al mar", "Sea view"},
                             {"Parqueo", "Parking"}, {"Wifi", "Wi-Fi"}, {"Zona infantil", "Play area"}};
const Pair paymentOptions[] = {{"Efectivo", "Cash"}, {"Tarjeta", "Card"}, {"Transferencia", "Bank transfer"}};

const char *const openings[] = {"Paladar", "Restaurante", "Café", "Bar", "La Casa de", "El Rincón de", "La Terraza de",
                                "El Patio de", "Fonda", "Cafetería", "Taberna", "La Esquina de"};
const char *const namesakes[] = {"Ñico",       "Doña Rosa", "Los Abuelos", "La Ceiba",  "El Malecón", "San Rafael",
                                 "Las Palmas", "El Trópico", "La Marina",   "Don Pepe",  "Mercedes",  "El Faro",
                                 "Los Frailes", "La Bodega", "El Colonial", "Las Brisas", "Santa Ana", "El Guajiro",
                                 "La Giraldilla", "Vista Alegre", "El Cañaveral", "La Fortaleza", "Bellamar", "El Jardín",
                                 "Tía Carmela", "La Casona de Tita", "Los Girasoles", "La Fuentecita", "El Bohío de Pancho",
                                 "Los Portales", "Las Tejas Rojas", "La Moneda Cubana", "El Ranchón de Tito", "La Roca Azul",
                                 "La Flor del Café", "Camino al Sol", "La Campana", "El Patio Colonial", "Los Mangos",
                                 "La Vitrola Azul", "El Buganvil", "La Esquinita", "La Esperanza", "El Cimarrón",
                                 "Los Tres Reyes", "La Guitarra", "El Almendro", "La Palmita", "El Framboyán", "Casa Tomasa",
                                 "La Brisa Marina", "El Cafetal", "La Yagruma", "El Mirador del Sur", "La Tinaja",
                                 "Los Abanicos", "El Quitrín", "La Mulata", "El Zunzún", "La Lisa Dorada", "Doña Juana"};

template <typename T, size_t N>
const T &pick(std::mt19937 &random, const T (&items)[N])
{
    return items[random() % N];
}

bool chance(std::mt19937 &random, int percent)
{
    return int(random() % 100) < percent;
}

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

void nameTable(CatalogueData &data, const char *table, const Pair *names, int count, int firstId)
{
    for (int i = 0; i < count; ++i)
        data.rows(QString::fromLatin1(table))
            .append({{QStringLiteral("id"), firstId + i}, {QStringLiteral("name"), s(names[i].es)},
                     {QStringLiteral("name_en"), s(names[i].en)}});
}

struct Dish {
    const char *es;
    const char *en;
    double price;
};
struct Section {
    const char *es;
    const char *en;
    std::initializer_list<Dish> dishes;
};

const Section sections[] = {
    {"Entrantes", "Starters",
     {{"Tostones rellenos", "Stuffed tostones", 3.5}, {"Croquetas de jamón", "Ham croquettes", 2.5},
      {"Ensalada de aguacate", "Avocado salad", 3}, {"Coctel de camarones", "Shrimp cocktail", 6}}},
    {"Platos fuertes", "Main courses",
     {{"Ropa vieja", "Shredded beef", 9}, {"Lechón asado", "Roast pork", 8.5}, {"Langosta enchilada", "Lobster in creole sauce", 18},
      {"Pollo a la plancha", "Grilled chicken", 7}, {"Pescado del día", "Catch of the day", 11}}},
    {"Guarniciones", "Sides",
     {{"Arroz congrí", "Rice and beans", 2}, {"Yuca con mojo", "Cassava with mojo", 2.5}, {"Plátano maduro frito", "Fried sweet plantain", 2}}},
    {"Postres", "Desserts",
     {{"Flan de la casa", "House flan", 3}, {"Arroz con leche", "Rice pudding", 2.5}, {"Cascos de guayaba con queso", "Guava shells with cheese", 3}}},
    {"Bebidas", "Drinks",
     {{"Mojito", "Mojito", 4}, {"Daiquirí", "Daiquiri", 4.5}, {"Jugo de mango", "Mango juice", 2}, {"Café cubano", "Cuban coffee", 1.5}}},
};

QString dashed(QDate date) { return CatalogueDates::formatDashed(date); }

}

CatalogueData makeDemo(const DemoOptions &options)
{
    std::mt19937 random(options.seed);
    CatalogueData data;
    data.setExtra(QStringLiteral("version_date"), CatalogueDates::formatCompact(options.date));
    data.setExtra(QStringLiteral("db_version"), QStringLiteral("demo-%1").arg(options.seed));
    data.setExtra(QStringLiteral("expire_date"), CatalogueDates::formatCompact(options.date.addMonths(6)));
    data.setExtra(QStringLiteral("phone_number"), QStringLiteral("8888"));

    nameTable(data, "price_ranks", priceRanks, int(std::size(priceRanks)), 2);
    nameTable(data, "cuisines", cuisines, int(std::size(cuisines)), 1);
    nameTable(data, "restaurant_groups", groups, int(std::size(groups)), 1);
    nameTable(data, "service_types", serviceTypes, int(std::size(serviceTypes)), 1);
    nameTable(data, "place_options", placeOptions, int(std::size(placeOptions)), 1);
    nameTable(data, "payment_options", paymentOptions, int(std::size(paymentOptions)), 1);

    // Municipality ids are the province's id times 100 plus their rank in it.
    const QList<DemoProvince> &provinces = demoProvinces();
    for (int p = 0; p < provinces.size(); ++p) {
        data.rows(QStringLiteral("states")).append({{QStringLiteral("id"), p + 1}, {QStringLiteral("name"), provinces[p].name}});
        for (int m = 0; m < provinces[p].municipalities.size(); ++m)
            data.rows(QStringLiteral("counties"))
                .append({{QStringLiteral("id"), (p + 1) * 100 + m + 1}, {QStringLiteral("state_id"), p + 1},
                         {QStringLiteral("name"), provinces[p].municipalities[m]}});
    }

    // A pool of pictures, reused across places: real guides repeat stock shots too, and this keeps
    // a 100,000-place demo to a sensible size.
    QList<QByteArray> dishes;
    for (int i = 0; i < 40; ++i)
        dishes.append(DemoPictures::dish(random, 400, 225));
    QList<QByteArray> terraces;
    for (int i = 0; i < 8; ++i)
        terraces.append(DemoPictures::terrace(random, 600, 300));

    const QList<DemoTown> towns = demoTowns(options.onLand);
    QHash<int, int> townIndex; // a province's first town
    for (int t = towns.size() - 1; t >= 0; --t)
        townIndex.insert(towns.at(t).province, t);
    QSet<QString> usedNames;
    int galleryId = 1;
    int menuId = 1;
    int promotionId = 1;
    for (int i = 0; i < options.places; ++i) {
        const int id = i + 1;
        // The capital holds about a third of the places, as in a real guide.
        const int province = chance(random, 33) ? 0 : int(random() % provinces.size());
        const DemoProvince &where = provinces[province];
        const int municipality = (province + 1) * 100 + 1 + int(random() % where.municipalities.size());
        // Names repeat in a big guide only across towns: a second one takes its municipality's name.
        QString name = s(pick(random, openings)) + QLatin1Char(' ') + s(pick(random, namesakes));
        if (usedNames.contains(name))
            name += QLatin1Char(' ') + where.municipalities.at(municipality % 100 - 1);
        if (usedNames.contains(name))
            name += QStringLiteral(" %1").arg(id);
        usedNames.insert(name);
        // A Cuban address in the municipality's town, and the point on its street it names.
        const DemoAddress address = demoAddress(towns.at(townIndex.value(province) + municipality % 100 - 1), random);
        const int cuisine = 1 + int(random() % std::size(cuisines));
        const int opensAt = 8 + int(random() % 5);
        const int closesAt = 21 + int(random() % 3);
        const bool closed = chance(random, 4);
        QVariantMap place{
            {QStringLiteral("id"), id},
            {QStringLiteral("name"), name},
            {QStringLiteral("search_name"), searchName(name)},
            {QStringLiteral("address"), address.text()},
            {QStringLiteral("phone"), chance(random, 85) ? QStringLiteral("7%1").arg(8000000 + random() % 999999)
                                                         : QString()},
            {QStringLiteral("email"), chance(random, 40) ? QStringLiteral("reservas%1@demo.velmora.app").arg(id) : QString()},
            {QStringLiteral("county_id"), municipality},
            {QStringLiteral("price_rank_id"), 2 + int(random() % std::size(priceRanks))},
            {QStringLiteral("rest_group_id"), 1 + int(random() % std::size(groups))},
            {QStringLiteral("oof"), closed ? 1 : 0},
            {QStringLiteral("latitud"), address.latitude},
            {QStringLiteral("longitud"), address.longitude},
            {QStringLiteral("horario"), QStringLiteral("De %1:00 a %2:00, todos los días").arg(opensAt).arg(closesAt)},
            {QStringLiteral("horario_en"), QStringLiteral("%1 to %2, every day").arg(englishHour(opensAt), englishHour(closesAt))},
            {QStringLiteral("description"),
             QStringLiteral("Cocina %1 en el corazón de %2. Ambiente familiar, raciones generosas y la mejor atención.")
                 .arg(s(cuisines[cuisine - 1].es).toLower(), where.municipalities.at(municipality % 100 - 1))},
            {QStringLiteral("description_en"),
             QStringLiteral("%1 cooking in the heart of %2. A family atmosphere, generous portions and warm service.")
                 .arg(s(cuisines[cuisine - 1].en), where.municipalities.at(municipality % 100 - 1))},
            {QStringLiteral("profile_url"), chance(random, 30) ? QStringLiteral("demo/%1").arg(id) : QString()},
        };
        if (closed) {
            place.insert(QStringLiteral("oof_reason"), QStringLiteral("Cerrado por reformas"));
            place.insert(QStringLiteral("oof_reason_en"), QStringLiteral("Closed for refurbishment"));
        }
        data.rows(QStringLiteral("restaurants_cuisines")).append({{QStringLiteral("restaurant_id"), id}, {QStringLiteral("cuisine_id"), cuisine}});
        if (chance(random, 35)) {
            const int second = 1 + int(random() % std::size(cuisines));
            if (second != cuisine)
                data.rows(QStringLiteral("restaurants_cuisines"))
                    .append({{QStringLiteral("restaurant_id"), id}, {QStringLiteral("cuisine_id"), second}});
        }
        const auto link = [&](const char *table, const char *column, int count) {
            for (int option = 1; option <= count; ++option)
                if (chance(random, 30))
                    data.rows(QString::fromLatin1(table))
                        .append({{QStringLiteral("restaurant_id"), id}, {QString::fromLatin1(column), option}});
        };
        link("restaurants_service_types", "service_type_id", int(std::size(serviceTypes)));
        link("restaurants_place_options", "place_option_id", int(std::size(placeOptions)));
        link("restaurants_payment_types", "payment_type_id", int(std::size(paymentOptions)));

        if (chance(random, 50))
            data.rows(QStringLiteral("restaurants_profiles"))
                .append({{QStringLiteral("restaurant_id"), id}, {QStringLiteral("data"), dishes.at(random() % dishes.size())}});
        const bool gallery = chance(random, 5);
        if (gallery)
            for (int picture = 0, count = 3 + int(random() % 3); picture < count; ++picture)
                data.rows(QStringLiteral("gallery"))
                    .append({{QStringLiteral("id"), galleryId++}, {QStringLiteral("restaurant_id"), id},
                             {QStringLiteral("data"), dishes.at(random() % dishes.size())},
                             {QStringLiteral("description"), QStringLiteral("Especialidad de la casa")},
                             {QStringLiteral("description_en"), QStringLiteral("House speciality")}});
        place.insert(QStringLiteral("has_gallery"), gallery ? 1 : 0);

        const bool menu = chance(random, 30);
        if (menu) {
            data.rows(QStringLiteral("menu")).append({{QStringLiteral("id"), menuId}, {QStringLiteral("restaurant_id"), id},
                                                      {QStringLiteral("description"), QStringLiteral("Carta de temporada")},
                                                      {QStringLiteral("description_en"), QStringLiteral("Seasonal menu")}});
            for (const Section &section : sections)
                for (const Dish &dish : section.dishes)
                    if (chance(random, 70))
                        data.rows(QStringLiteral("menu_entries"))
                            .append({{QStringLiteral("menu_id"), menuId}, {QStringLiteral("name"), s(dish.es)},
                                     {QStringLiteral("name_en"), s(dish.en)}, {QStringLiteral("custom_category"), s(section.es)},
                                     {QStringLiteral("custom_category_en"), s(section.en)},
                                     {QStringLiteral("price"), dish.price + int(random() % 3)}});
            ++menuId;
        }
        place.insert(QStringLiteral("has_menu"), menu ? 1 : 0);

        if (chance(random, 4))
            data.rows(QStringLiteral("offers"))
                .append({{QStringLiteral("restaurant_id"), id},
                         {QStringLiteral("name"), QStringLiteral("Menú del día")},
                         {QStringLiteral("name_en"), QStringLiteral("Set menu of the day")},
                         {QStringLiteral("description"), QStringLiteral("Entrante, plato fuerte, postre y bebida")},
                         {QStringLiteral("description_en"), QStringLiteral("Starter, main course, dessert and a drink")},
                         {QStringLiteral("price"), 8.0 + random() % 8 + 0.5 * (random() % 2)},
                         {QStringLiteral("valid_from"), dashed(options.date.addDays(-10))},
                         {QStringLiteral("valid_to"), dashed(options.date.addDays(20 + int(random() % 40)))}});
        if (chance(random, 2))
            data.rows(QStringLiteral("restaurants_promoted"))
                .append({{QStringLiteral("id"), promotionId++}, {QStringLiteral("restaurant_id"), id},
                         {QStringLiteral("valid_to"), dashed(options.date.addMonths(2))},
                         {QStringLiteral("data"), terraces.at(random() % terraces.size())}});
        data.rows(QStringLiteral("restaurants")).append(place);
    }

    // One campaign of each action, with pictures for Spanish, English and any language.
    struct Campaign {
        const char *action;
        const char *value;
        const char *valueEn;
    };
    const Campaign campaigns[] = {
        {"url", "https://demo.velmora.app/es/ofertas", "https://demo.velmora.app/en/offers"},
        {"call", "78885500", "78885500"},
        {"email", "anuncios@demo.velmora.app", "ads@demo.velmora.app"},
        {"tip", "¿Sabías que el mojito nació en La Habana?", "Did you know the mojito was born in Havana?"},
    };
    int imageId = 1;
    for (int c = 0; c < int(std::size(campaigns)); ++c) {
        data.rows(QStringLiteral("app_campaigns"))
            .append({{QStringLiteral("id"), c + 1}, {QStringLiteral("action"), s(campaigns[c].action)},
                     {QStringLiteral("action_value"), s(campaigns[c].value)},
                     {QStringLiteral("action_value_en"), s(campaigns[c].valueEn)},
                     {QStringLiteral("valid_to"), dashed(options.date.addMonths(3))}, {QStringLiteral("position"), c + 1}});
        for (const char *language : {"es", "en", "any"})
            data.rows(QStringLiteral("app_campaign_images"))
                .append({{QStringLiteral("id"), imageId++}, {QStringLiteral("campaign_id"), c + 1},
                         {QStringLiteral("lang"), QString::fromLatin1(language)},
                         {QStringLiteral("data"), DemoPictures::banner(random, 640, 200)}});
    }
    return data;
}
