#pragma once

#include <QString>

// What a top-level screen may ask of the drawer it lives in, and nothing more: to show the side
// menu, or to switch to another of its entries ("browse", "myplaces"). The application sets the
// one presenter; screens never reach the application object.
class SideMenuPresenter
{
public:
    virtual ~SideMenuPresenter() = default;
    virtual void showSideMenu(bool animated) = 0;
    virtual void showMenuEntry(const QString &key) = 0;

    static SideMenuPresenter *shared() { return sharedSlot(); }
    static void setShared(SideMenuPresenter *presenter) { sharedSlot() = presenter; }

private:
    static SideMenuPresenter *&sharedSlot()
    {
        static SideMenuPresenter *presenter = nullptr;
        return presenter;
    }
};
