#pragma once

#include "app/DeepLink.h"

class BuscarViewController;
class SideMenuTableViewController;

// Takes a link to its screen through the same controls a user would use: the search screen
// for places, provinces, search and its tabs, the side menu for the other top-level screens.
class LinkRouter
{
public:
    LinkRouter(BuscarViewController &search, SideMenuTableViewController &menu)
        : m_search(search)
        , m_menu(menu)
    {
    }
    // False, with `why`, when the link leads nowhere in this catalogue.
    bool follow(const DeepLink &link, bool animated, QString *why);

private:
    BuscarViewController &m_search;
    SideMenuTableViewController &m_menu;
};
