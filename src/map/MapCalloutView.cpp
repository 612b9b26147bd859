#include "map/MapCalloutView.h"

#include "map/MapViewDelegate.h"

void MapCalloutView::setLeftImage(const QString &source)
{
    m_leftImage = source;
    emit changed();
}

void MapCalloutView::setTitle(const QVariant &title, const QString &spoken)
{
    m_title = title;
    m_spokenTitle = spoken;
    emit changed();
}

void MapCalloutView::setSubtitle(const QVariant &subtitle)
{
    m_subtitle = subtitle;
    emit changed();
}

void MapCalloutView::setRightButtonTitle(const QVariant &title)
{
    m_rightButtonTitle = title;
    emit changed();
}

void MapCalloutView::tapRightButton()
{
    if (m_delegate)
        m_delegate->calloutViewDidTapRightButton();
}
