#pragma once

#include "richtext/RichString.h"

#include <QAbstractListModel>
#include <QHash>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class SideMenuViewController;

// The rows of the side menu: the logo, then the top-level screens with their icons. The chosen
// row shows its full icon in bold; the others their thin icon in light text.
class SideMenuTableViewController : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Part of the side menu")
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)

public:
    enum Role { KeyRole = Qt::UserRole + 1, TitleRole, IconRole, SelectedRole, LogoRole, BadgeRole, FlashRole };

    explicit SideMenuTableViewController(QObject *parent = nullptr);

    void setMenuDelegate(SideMenuViewController *delegate) { m_menuDelegate = delegate; }
    void viewDidLoad();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QStringList rows() const { return m_rows; }
    int selectedRow() const { return m_selectedRow; }
    Q_INVOKABLE void didSelectRow(int row);
    void simulateTapOnSearch() { didSelectRow(1); }
    // Chooses the row of a screen ("browse", "map", "myplaces", "info", "settings") as a tap
    // would, and shows the screen before returning.
    bool selectRowWithKey(const QString &key);
    void localize();
    // Called after the selection, once the table is done: loads the row's screen.
    void tellMenuToLoad(const QString &rowKey);

signals:
    void selectedRowChanged();
    // The row to flash white and fade, as a tap's feedback.
    void rowFlashed(int row);

private:
    void markSelected(int row);
    SideMenuViewController *m_menuDelegate = nullptr;
    RichString R;
    QStringList m_rows;
    QHash<QString, QString> m_rowText;
    QHash<QString, QString> m_rowThinIcons;
    QHash<QString, QString> m_rowFullIcons;
    int m_selectedRow = 1;
};
