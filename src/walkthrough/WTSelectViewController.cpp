#include "walkthrough/WTSelectViewController.h"

#include "walkthrough/WalkthroughDelegate.h"

void WTSelectViewController::downloadButtonTouched()
{
    if (walkthroughDelegate)
        walkthroughDelegate->didSelectDownload();
}

void WTSelectViewController::iTunesButtonTouched()
{
    if (walkthroughDelegate)
        walkthroughDelegate->didSelectiTunes();
}
