#pragma once

#include <QString>

// What a screen showing an ad may ask of the root: to show an ad's "tip" in the fortune sheet,
// over the dimmed screen. The application sets the one presenter; screens never reach it.
class TipPresenter
{
public:
    virtual ~TipPresenter() = default;
    virtual void showTip(const QString &text) = 0;

    static TipPresenter *shared() { return sharedSlot(); }
    static void setShared(TipPresenter *presenter) { sharedSlot() = presenter; }

private:
    static TipPresenter *&sharedSlot()
    {
        static TipPresenter *presenter = nullptr;
        return presenter;
    }
};
