#pragma once

#include <QImage>
#include <QList>
#include <QString>

class Restaurants;

// Where a gallery gets its pictures, page by page (pages count from 1). A page's picture is read
// only when that page is asked for: a gallery never holds all of them.
class PagedPicturesProvider
{
public:
    virtual ~PagedPicturesProvider() = default;
    virtual int pageCount() const = 0;
    virtual QImage imageForPage(int page) const = 0;
    virtual QString textForPage(int page) const = 0;
    // The address the view loads the page's picture from, off the main thread.
    virtual QString sourceForPage(int page) const = 0;
};

// A place's gallery pictures from the catalogue, by their ids.
class RestaurantPicturesProvider : public PagedPicturesProvider
{
public:
    explicit RestaurantPicturesProvider(Restaurants &restaurants) : m_restaurants(restaurants) {}

    QList<int> imageIds;

    int pageCount() const override { return int(imageIds.size()); }
    QImage imageForPage(int page) const override;
    QString textForPage(int page) const override;
    QString sourceForPage(int page) const override;

private:
    bool has(int page) const { return page >= 1 && page <= imageIds.size(); }
    Restaurants &m_restaurants;
};
