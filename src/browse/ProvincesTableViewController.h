#pragma once

#include "presentation/ViewController.h"

#include <QVariantList>

class Restaurants;
class ProvincesSelectorDelegate;

// The province picker that drops from the search screen's title: every province with its number
// of places, in the order of the user's language. Picking one stores it and tells the delegate;
// its own title closes it again and changes nothing.
class ProvincesTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)
    Q_PROPERTY(QString currentName READ currentName NOTIFY rowsChanged)
    Q_PROPERTY(int pickedRow READ pickedRow NOTIFY pickedRowChanged)

public:
    explicit ProvincesTableViewController(Restaurants &restaurants, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/ProvincesView.qml")); }
    bool navigationBarHidden() const override { return true; }

    void setDelegate(ProvincesSelectorDelegate *delegate) { m_delegate = delegate; }
    const QList<int> &provinceIds() const { return m_provinceIds; }
    // Each row: {"id", "name", "count"} with the count as the user reads it ("312 places").
    QVariantList rows() const { return m_rows; }
    QString currentName() const { return m_currentName; }
    int pickedRow() const { return m_pickedRow; }

    Q_INVOKABLE void didSelectRow(int row);
    Q_INVOKABLE void close();

signals:
    void rowsChanged();
    void pickedRowChanged();

protected:
    void viewDidLoad() override;

private:
    Restaurants &m_restaurants;
    ProvincesSelectorDelegate *m_delegate = nullptr;
    QList<int> m_provinceIds;
    QVariantList m_rows;
    QString m_currentName;
    int m_pickedRow = -1;
};
