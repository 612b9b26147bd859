#pragma once

#include "personal/SubscribeProvincesDelegate.h"
#include "presentation/ViewController.h"

#include <QVariantList>

class Restaurants;
class UserDefaults;

// The settings: the interface's language, the SMS subscription (when it is offered), whether
// closed places are listed, analytics. Ten taps in a row on the language already chosen show or
// hide the developer section, with its switches and tools.
class SettingsTableViewController : public ViewController, public SubscribeProvincesDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)
    Q_PROPERTY(bool confirmingDelete READ confirmingDelete NOTIFY confirmingDeleteChanged)

public:
    // The table's unit: its kind and payload.
    struct SettingsRow {
        enum class Kind { header, language, toggle, action, subscribed };
        Kind kind;
        QString title;   // header: the title; language: the name; toggle: the title
        QString value;   // language: the code; toggle: the settings key; action: the command
        bool operator==(const SettingsRow &) const = default;
    };

    SettingsTableViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/personal/SettingsView.qml")); }

    const QList<SettingsRow> &settingsRows() const { return m_rows; }
    // For the view: one map per row with its reuse identifier and what its cell shows.
    QVariantList rows() const;
    int devtaps() const { return m_devtaps; }
    bool confirmingDelete() const { return m_confirmingDelete; }

    void populateCells();
    Q_INVOKABLE void didSelectRow(int row);
    // A switch of a toggle row moved: the value is stored, and some keys have an effect at once.
    Q_INVOKABLE void toggleChanged(int row, bool on);
    // The delete tool's confirmation: the catalogue file goes; the open one stays in use.
    Q_INVOKABLE void confirmDelete(bool confirmed);
    void showMenu();

    void viewWillAppear() override;
    // The province screen pushed from here ends either way by going.
    void provinceSelectionDidCancel() override;
    void provinceSelectionDidFinish(const QSet<int> &provinces) override;

signals:
    void rowsChanged();
    void confirmingDeleteChanged();

protected:
    void viewDidLoad() override;

private:
    void localize();
    void runCommand(const QString &command);

    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
    QList<SettingsRow> m_rows;
    int m_devtaps = 0;
    bool m_confirmingDelete = false;
};
