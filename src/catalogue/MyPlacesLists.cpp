#include "MyPlacesLists.h"

#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"

#include <QList>

QString MyPlacesLists::key(int list)
{
    switch (list) {
    case favoritos: return DefaultKeys::favoritos;
    case visitados: return DefaultKeys::visitados;
    default: return DefaultKeys::porVisitar;
    }
}

void MyPlacesLists::load(const UserDefaults &defaults)
{
    for (int list = 0; list < count; ++list) {
        const QList<int> ids = defaults.intArrayForKey(key(list));
        sets[list] = QSet<int>(ids.begin(), ids.end());
    }
}

void MyPlacesLists::saveList(UserDefaults &defaults, int list) const
{
    if (list >= 0 && list < count)
        defaults.setIntArray(sets[list].values(), key(list));
}

void MyPlacesLists::save(UserDefaults &defaults) const
{
    for (int list = 0; list < count; ++list)
        saveList(defaults, list);
}

void MyPlacesLists::toggle(int list, int id)
{
    if (list < 0 || list >= count)
        return;
    if (!sets[list].remove(id))
        sets[list].insert(id);
}
