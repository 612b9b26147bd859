#pragma once

#include "presentation/ViewController.h"

#include <QVariantList>

class UserDefaults;

// A developer's view of the whole settings store: every key and its value, sorted by key, and
// the erasure of a key (a registered default then shows again; a forced one can't be erased).
class UserDefaultsTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList pairs READ pairObjects NOTIFY pairsChanged)
    Q_PROPERTY(bool editing READ editing NOTIFY editingChanged)

public:
    explicit UserDefaultsTableViewController(UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/personal/UserDefaultsView.qml")); }

    const QList<std::pair<QString, QVariant>> &pairs() const { return m_pairs; }
    bool editing() const { return m_editing; }
    void loadPairs();
    Q_INVOKABLE bool canEditRow(int row) const;
    // Erases the row's key; false for a forced key or no such row.
    Q_INVOKABLE bool deleteRow(int row);
    // The plain printed form of a value.
    static QString describe(const QVariant &value);

signals:
    void pairsChanged();
    void editingChanged();

protected:
    void viewDidLoad() override;

private:
    QVariantList pairObjects() const;
    void setEditing(bool editing);

    UserDefaults &m_defaults;
    QList<std::pair<QString, QVariant>> m_pairs;
    class BarButtonItem *m_editButton = nullptr;
    bool m_editing = false;
};
