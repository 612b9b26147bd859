#include "catalogue/LoadRestaurantsOperation.h"

#include "platform/Notifications.h"
#include "catalogue/Restaurants.h"
#include "platform/NotificationCenter.h"

#include <QThread>

LoadRestaurantsOperation::LoadRestaurantsOperation(Restaurants &restaurants, int retryIntervalMs)
    : m_restaurants(restaurants)
    , m_retryIntervalMs(retryIntervalMs)
{
}

void LoadRestaurantsOperation::main()
{
    constexpr int sliceMs = 50; // so a cancel is noticed quickly during the wait
    while (!isCancelled()) {
        if (m_restaurants.ready()) {
            NotificationCenter::defaultCenter().post(Notifications::RestaurantsLoaded);
            return;
        }
        m_restaurants.loadDatabase();
        if (m_restaurants.ready())
            continue; // announce at once rather than after another wait
        NotificationCenter::defaultCenter().post(Notifications::RestaurantsNotLoaded);
        for (int waited = 0; waited < m_retryIntervalMs && !isCancelled(); waited += sliceMs)
            QThread::msleep(sliceMs);
    }
}
